// The quick reader of records: what it accepts is what the other reader makes of the line.
#include "traffic/record/record_scan.h"

#include <gtest/gtest.h>

#include <random>

#include "common/text/json.h"
#include "sample_records.h"

namespace hbbtv::traffic::test {
namespace {

std::vector<std::string> Lines() {
    Record full = SetChannel(-3, 99);
    full.library = {4711, 1000, "service"};
    full.platform = {900, 0, "platform"};
    full.rule = "op:SetChannel delay=2s";
    full.note = "a note";
    full.open = true;
    std::vector<std::string> lines;
    for (const Record& record : {full, GetName(), ChangedEvent(), GetName(R"({"name":"\u00e4\"","ret":1})")}) {
        lines.push_back(WriteJson(ToJson(record)));
    }
    return lines;
}

std::string Other(const std::string& line) {
    try {
        return WriteJson(ToJson(FromJson(ParseJson(line, kDeepestJson + 8))));
    } catch (const std::runtime_error& e) {
        return std::string("refused: ") + e.what();
    }
}

TEST(RecordScan, ReadsWhatRecordingsUsuallyHave) {
    for (const std::string& line : Lines()) {
        const std::optional<Record> record = ScanRecord(line, Payloads::Read);
        ASSERT_TRUE(record) << line;
        EXPECT_EQ(WriteJson(ToJson(*record)), line);
    }
}

TEST(RecordScan, LeavesTheRestToTheOtherReader) {
    Record raw = GetName("no JSON");
    EXPECT_FALSE(ScanRecord(WriteJson(ToJson(raw)), Payloads::Read));
    raw = GetName();
    raw.note = "quoted \"note\"";
    EXPECT_FALSE(ScanRecord(WriteJson(ToJson(raw)), Payloads::Read));
    raw.note = "";
    raw.kind = Record::Kind::Closed;
    EXPECT_FALSE(ScanRecord(WriteJson(ToJson(raw)), Payloads::Read));
}

TEST(RecordScan, SkipsPayloads) {
    const std::optional<Record> record = ScanRecord(Lines()[1], Payloads::Skipped);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->operation, "GetName");
    EXPECT_EQ(record->message.json.size(), 0u);
    EXPECT_TRUE(record->reply->json.isObject());
    EXPECT_EQ(*record->status, 0);
    std::string damaged = Lines()[1];
    damaged.insert(damaged.find("\"c_handle\""), ",");
    EXPECT_FALSE(ScanRecord(damaged, Payloads::Skipped));
}

// Damaged lines: what is accepted is exactly what the other reader accepts.
TEST(RecordScan, AgreesWithTheOtherReaderOnEveryDamagedLine) {
    const std::string bytes = "{}[]\",:\\0123456789.eE+- tfnu\x01\xff\n";
    std::mt19937 random(1);
    size_t accepted = 0;
    for (const std::string& line : Lines()) {
        for (int i = 0; i < 20000; ++i) {
            std::string changed = line;
            const size_t at = random() % changed.size();
            const char c = bytes[random() % bytes.size()];
            if (i % 3 == 0) changed[at] = c;
            if (i % 3 == 1) changed.insert(at, 1, c);
            if (i % 3 == 2) changed.erase(at, 1 + random() % 3);
            const std::optional<Record> record = ScanRecord(changed, Payloads::Read);
            if (!record) continue;
            ++accepted;
            ASSERT_EQ(WriteJson(ToJson(*record)), Other(changed)) << changed;
        }
    }
    EXPECT_GT(accepted, 1000u);
}

}  // namespace
}  // namespace hbbtv::traffic::test
