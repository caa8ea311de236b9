// Lines of recordings: what is written is read again, and what is damaged is refused with the reason.
#include "traffic/record/record_reader.h"

#include <gmock/gmock.h>
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

Record Read(const std::string& line, Payloads payloads = Payloads::Read) {
    return RecordReader(payloads).Read(line);
}

std::string WhyNot(const std::string& line) {
    try {
        Read(line);
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "it was read";
}

TEST(RecordReader, ReadsWhatWasWritten) {
    RecordReader reader(Payloads::Read);
    for (const std::string& line : Lines()) EXPECT_EQ(WriteJson(ToJson(reader.Read(line))), line);
    Record record = GetName("no JSON");
    record.note = "a \"quoted\" note\n\xc3\xa4";
    record.kind = Record::Kind::Closed;
    EXPECT_EQ(Read(WriteJson(ToJson(record))).note, record.note);
    record.kind = Record::Kind::Exchange;
    EXPECT_EQ(Read(WriteJson(ToJson(record))).reply->raw, "no JSON");
}

TEST(RecordReader, KeepsEveryValueOfAMessage) {
    Record record = GetName();
    SetPayload(record.message,
               R"({"a":[1,-2,18446744073709551615,0.1,1e300,true,false,null,""],"o":{"n":{}},"s":"\u0000"})");
    const Record read = Read(WriteJson(ToJson(record)));
    EXPECT_EQ(read.message.json, record.message.json);
    EXPECT_EQ(read.message.json["a"][3].asDouble(), 0.1);
}

TEST(RecordReader, SkipsPayloads) {
    const Record record = Read(Lines()[1], Payloads::Skipped);
    EXPECT_EQ(record.operation, "GetName");
    EXPECT_EQ(record.message.json.size(), 0u);
    EXPECT_TRUE(record.reply->json.isObject());
    EXPECT_EQ(*record.status, 0);
}

TEST(RecordReader, SaysWhyALineIsNotARecord) {
    EXPECT_EQ(WhyNot("[]"), "it is not an object");
    EXPECT_EQ(WhyNot(R"({"number":1})"), "\"kind\" is missing");
    EXPECT_EQ(WhyNot(R"({"number":"1","kind":"note","wall_us":1,"monotonic_us":1})"), "\"number\" is not a count");
    EXPECT_EQ(WhyNot(R"({"number":1,"kind":"note","wall_us":9007199254740992,"monotonic_us":1})"),
              "\"wall_us\" is not a time below 2^53 us");
    EXPECT_EQ(WhyNot(R"({"number":1,"kind":"note","wall_us":1,"monotonic_us":1,"duration_us":18446744073709551615})"),
              "\"duration_us\" is not a time below 2^53 us")
        << "a reply before its request";
    EXPECT_EQ(WhyNot(R"({"number":1,"kind":"song","wall_us":1,"monotonic_us":1})"), "\"kind\" is not one of a record");
    EXPECT_THAT(WhyNot(R"({"number":1,})"), testing::StartsWith("not valid JSON: column 13: "));
    EXPECT_THAT(WhyNot(std::string(1000000, '[')), testing::StartsWith("not valid JSON"));
    const std::string deep = std::string(200, '[') + std::string(200, ']');
    EXPECT_EQ(WhyNot(R"({"number":1,"kind":"note","wall_us":1,"monotonic_us":1,"message":{"json":)" + deep + "}}"),
              "\"json\" nests too deeply");
}

// Whatever is accepted is a record that can be written and read again.
TEST(RecordReader, TakesDamagedLinesAsRecordsOrNotAtAll) {
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
            if (WhyNot(changed) != "it was read") continue;
            ++accepted;
            const std::string written = WriteJson(ToJson(Read(changed)));
            ASSERT_EQ(WriteJson(ToJson(Read(written))), written) << changed;
        }
    }
    EXPECT_GT(accepted, 1000u);
}

}  // namespace
}  // namespace hbbtv::traffic::test
