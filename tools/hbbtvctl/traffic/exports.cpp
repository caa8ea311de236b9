#include "traffic/exports.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "common/failure.h"
#include "traffic/export/pcapng.h"
#include "traffic/export/perfetto.h"
#include "traffic/walk.h"
#include "traffic/web/page.h"

namespace hbbtv::ctl {

namespace {

// Packets that wait for the earlier ones of longer exchanges.
constexpr size_t kWindow = 100000;

// A file for output. Write() throws Failure(kUsage) on an error.
class OutputFile {
  public:
    explicit OutputFile(const std::string& path)
        : mPath(path), mFile(path == "-" ? stdout : std::fopen(path.c_str(), "wb")) {
        if (mFile == nullptr) Fail();
    }
    ~OutputFile() {
        if (mFile != nullptr && mFile != stdout) std::fclose(mFile);
    }
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(const std::string& bytes) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), mFile) != bytes.size()) Fail();
    }

    void Flush() {
        if (std::fflush(mFile) != 0) Fail();
    }

  private:
    [[noreturn]] void Fail() const { throw Failure(kUsage, "cannot write " + mPath + ": " + std::strerror(errno)); }

    const std::string mPath;
    std::FILE* const mFile;
};

template <typename Writer>
void WriteAll(Writer writer, OutputFile& file, traffic::Selection& selection, bool live) {
    if (live) file.Flush();
    while (const std::optional<traffic::Record> record = selection.Next()) {
        writer.Add(*record);
        if (live) file.Flush();
    }
    writer.Finish();
}

}  // namespace

std::vector<CLI::Option*> AddExports(CLI::App& command, ExportOptions& options) {
    return {
        command.add_option("--pcapng", options.pcapng, "Write the messages to this file, for Wireshark")
            ->type_name("FILE"),
        command.add_option("--perfetto", options.perfetto, "Write a trace to this file, for Perfetto's page")
            ->type_name("FILE"),
        command.add_option("--walk", options.walk, "Write a file for hbbtvctl play that expects what was recorded")
            ->type_name("FILE"),
        command.add_option("--html", options.html, "Write a page to this file, for web browsers")->type_name("FILE")};
}

void WriteExport(const ExportOptions& options, traffic::Selection& selection, bool live) {
    OutputFile file(options.File());
    const auto write = [&file](const std::string& bytes) { file.Write(bytes); };
    if (!options.pcapng.empty()) {
        WriteAll(traffic::PcapngWriter(selection.Head(), live ? 0 : kWindow, write), file, selection, live);
    } else if (!options.walk.empty()) {
        WriteAll(WalkWriter(selection.Head(), write), file, selection, live);
    } else if (!options.html.empty()) {
        WriteAll(traffic::HtmlWriter(selection.Head(), write), file, selection, live);
    } else {
        WriteAll(traffic::PerfettoWriter(selection.Head(), write), file, selection, live);
    }
    file.Flush();
}

}  // namespace hbbtv::ctl
