// Files of traffic, and filters. The first line is the kind, "recording", "log" or "filter", the rest its content.
#include <fstream>

#include "common/failure.h"
#include "common/text/json.h"
#include "input.h"
#include "traffic/log/log_import.h"
#include "traffic/report/ladder.h"
#include "traffic/report/slowest.h"
#include "traffic/select/selection.h"
#include "traffic/view/line.h"
#include "traffic/view/statistics.h"

namespace hbbtv::fuzz {

namespace {

using namespace traffic;

std::string WriteFile(const std::string& content) {
    const std::string path = ScratchDirectory() + "/traffic";
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    return path;
}

void CheckLine(const std::string& line) {
    for (const char c : line) FUZZ_CHECK(static_cast<unsigned char>(c) >= 0x20 && c != 0x7f);
}

// A record is the same after it has been written and read.
void CheckRecord(const Record& record) {
    static RecordReader reader(Payloads::Read);
    const std::string text = WriteJson(ToJson(record));
    FUZZ_CHECK(WriteJson(ToJson(reader.Read(text))) == text);
}

void ReadRecording(const std::string& content) {
    const std::string path = WriteFile(content);
    for (const bool redacted : {false, true}) {
        SelectionSettings settings;
        settings.path = path;
        settings.follow = redacted ? std::optional<uint64_t>(0x1000) : std::nullopt;
        settings.redacted = redacted;
        Selection selection(settings);
        Statistics statistics;
        Ladder ladder(selection.Head().zone);
        Slowest slowest(selection.Head().zone);
        uint64_t count = 0;
        while (const std::optional<Record> record = selection.Next()) {
            ++count;
            CheckRecord(*record);
            CheckLine(Line(*record, selection.Names(), selection.Head().zone));
            statistics.Add(*record);
            slowest.Add(*record, selection.Names());
            if (count <= Ladder::kMost) ladder.Add(*record, selection.Names());
        }
        FUZZ_CHECK(!statistics.Text().empty() && statistics.Json().isObject());
        ladder.Text();
        ladder.Svg();
        slowest.Lines();
    }
}

void ReadLog(const std::string& content) {
    uint64_t count = 0;
    LogImport import({WriteFile(content), "+01:00", 2026}, [&count](const Record& record) {
        ++count;
        CheckRecord(record);
        CheckLine(Line(record, Names()));
    });
    import.Run();
    const LogCounts& counts = import.Counts();
    FUZZ_CHECK(counts.exchanges + counts.events + counts.notes == count);
}

std::vector<Record> Records() {
    std::vector<Record> records(4);
    for (size_t i = 0; i < records.size(); ++i) {
        Record& record = records[i];
        record.number = i + 1;
        record.message.type = i == 1 ? kOneWay : kRequest;
        SetPayload(record.message, R"({"c_handle":"0x1000","method":13,"type":12,"appid":11})");
        Identify(record, "service_plugin_to_hbbtv_vb_chn");
        if (i < 2) continue;
        record.reply.emplace();
        SetPayload(*record.reply, i == 2 ? R"({"ret":0,"name":"Das Erste"})" : "not JSON");
        record.duration = 5000;
        if (i == 2) record.status = 0;
    }
    records[0].kind = Record::Kind::Damaged;
    return records;
}

void ReadFilter(const std::string& text) {
    static const std::vector<Record> records = Records();
    const Filter filter(text);
    if (text.find_first_not_of(" \t\r\n\v\f") == std::string::npos) return;
    std::optional<Filter> inverse;
    try {
        inverse.emplace("!(" + text + ")");
    } catch (const Failure&) {
        return;  // nested too deeply by these two
    }
    for (const Record& record : records) {
        const bool matches = filter.Matches(record);
        FUZZ_CHECK(inverse->Matches(record) != matches);
        if (filter.NeedsPayloads()) continue;
        Record bare = record;
        for (Message* message : {&bare.message, bare.reply ? &*bare.reply : &bare.message}) {
            if (message->Readable()) message->json = Json::Value(Json::objectValue);
        }
        FUZZ_CHECK(filter.Matches(bare) == matches);
    }
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const Addressed input = Split(data, size);
    try {
        if (input.line == "recording") ReadRecording(input.rest);
        if (input.line == "log") ReadLog(input.rest);
        if (input.line == "filter") ReadFilter(input.rest);
    } catch (const hbbtv::Failure& e) {
        FUZZ_CHECK(e.Code() == hbbtv::kUsage && *e.what() != '\0');
    }
    return 0;
}
