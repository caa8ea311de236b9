#include "traffic/record/recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/quote.h"

namespace hbbtv::traffic {

namespace {

// Twice the largest message of a connection as Base64, and the rest of a record.
constexpr size_t kLongestLine = 16u << 20;
constexpr size_t kMostProblems = 100;

int CreateFile(const std::string& path) {
    const int fd = path == "-" ? fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0)
                               : open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0644);
    if (fd >= 0) return fd;
    if (errno == EEXIST) throw Failure(kUsage, "the file " + path + " exists: remove it, or choose another name");
    throw Failure(kUsage, "cannot create " + path + ": " + std::strerror(errno));
}

Json::Value ToJson(const RecordingHead& head) {
    Json::Value line(Json::objectValue);
    line["recording"] = head.version;
    line["program"] = head.program;
    line["directory"] = head.directory;
    line["zone"] = head.zone;
    head.time.AddTo(line);
    return line;
}

RecordingHead HeadFrom(const std::string& path, const std::string& text) {
    const std::string not_one = path + " is not a recording: ";
    Json::Value line;
    try {
        line = ParseJson(text);
    } catch (const BadJson& e) {
        throw Failure(kUsage, not_one + "line 1 is " + e.what() + " (`hbbtvctl record` makes a recording of a log)");
    }
    if (!line.isObject() || !line["recording"].isInt()) {
        throw Failure(kUsage, not_one + "line 1 has no \"recording\"");
    }
    RecordingHead head;
    head.version = line["recording"].asInt();
    if (head.version != kRecordingVersion) {
        throw Failure(kUsage, path + " is a recording of version " + std::to_string(head.version) +
                                  "; this program reads version " + std::to_string(kRecordingVersion));
    }
    for (const auto& [key, member] : {std::pair{"program", &head.program}, std::pair{"directory", &head.directory},
                                      std::pair{"zone", &head.zone}}) {
        if (line[key].isString()) *member = line[key].asString();
    }
    const auto time = [&line](const char* key) { return line[key].isUInt64() ? line[key].asUInt64() : 0; };
    head.time = TimeStamp(time("wall_us"), time("monotonic_us"));
    return head;
}

}  // namespace

RecordingWriter::RecordingWriter(const std::string& path, const RecordingHead& head) : mFile(CreateFile(path)) {
    const std::string problem = Append(WriteJson(ToJson(head)) + "\n");
    if (!problem.empty()) throw Failure(kUsage, "cannot write " + path + ": " + problem);
}

std::string RecordingWriter::Write(const Record& record) {
    return Append(WriteJson(traffic::ToJson(record)) + "\n");
}

std::string RecordingWriter::Append(const std::string& line) {
    size_t written = 0;
    while (written < line.size()) {
        const ssize_t count = write(mFile.Get(), line.data() + written, line.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) {
            const std::string reason = std::strerror(count < 0 ? errno : ENOSPC);
            // A later record must not be appended to a part of this one.
            const bool whole = ftruncate(mFile.Get(), static_cast<off_t>(mSize)) == 0;
            return whole ? reason : reason + "; the last line of the file is cut";
        }
        written += static_cast<size_t>(count);
    }
    mSize += line.size();
    return "";
}

RecordingReader::RecordingReader(const std::string& path, Payloads payloads)
    : mLines(path, kLongestLine), mReader(payloads) {
    std::string line;
    if (!mLines.Next(line)) throw Failure(kUsage, mLines.Name() + " is not a recording: it is empty");
    mHead = HeadFrom(mLines.Name(), line);
}

void RecordingReader::Skip(const std::string& reason) {
    ++mSkipped;
    if (mProblems.size() < kMostProblems) mProblems.push_back(mLines.Place() + ": " + reason);
}

std::optional<Record> RecordingReader::Next() {
    std::string line;
    while (mLines.Next(line)) {
        if (line.empty()) continue;
        if (line.size() > kLongestLine) {
            Skip("longer than " + std::to_string(kLongestLine >> 20) + " MiB");
            continue;
        }
        try {
            return mReader.Read(line);
        } catch (const std::runtime_error& e) {
            const bool head = line.find("\"recording\":") != std::string::npos;
            Skip(!mLines.Whole() ? "cut: the file ends in this line" : head ? "another recording begins" : e.what());
        }
    }
    return std::nullopt;
}

}  // namespace hbbtv::traffic
