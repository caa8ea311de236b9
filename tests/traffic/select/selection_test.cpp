// What is selected of a recording: by filter, time and handle; what a redacted one contains.
#include "traffic/select/selection.h"

#include <gtest/gtest.h>

#include "common/failure.h"
#include "common/text/json.h"
#include "sample_records.h"
#include "scratch_directory.h"

namespace hbbtv::traffic::test {
namespace {

constexpr uint64_t kSecond = 1000000;

struct SelectionTest : testing::Test {
    std::string Path() const { return directory.Path() + "/traffic.ndjson"; }

    void Write(const std::vector<Record>& records) const {
        RecordingWriter writer(Path(), {kRecordingVersion, "test", "/home/anna/tv", "+01:00", TimeStamp(kWall, 0)});
        for (const Record& record : records) EXPECT_EQ(writer.Write(record), "");
    }

    SelectionSettings Settings() const {
        SelectionSettings settings;
        settings.path = Path();
        return settings;
    }

    static std::vector<std::string> Operations(Selection& selection) {
        std::vector<std::string> operations;
        while (const std::optional<Record> record = selection.Next()) operations.push_back(record->operation);
        return operations;
    }

    ::hbbtv::test::ScratchDirectory directory;
};

Record At(Record record, uint64_t seconds) {
    record.time = TimeStamp(kWall + seconds * kSecond, seconds * kSecond);
    return record;
}

using Names = std::vector<std::string>;

TEST_F(SelectionTest, IsByFilterAndTimes) {
    Write({At(GetName(), 0), At(SetChannel(0, 1), 10), At(ChangedEvent(), 20)});
    SelectionSettings settings = Settings();
    settings.filter = "!event";
    Selection filtered(settings);
    EXPECT_EQ(Operations(filtered), (Names{"GetName", "SetChannel"}));
    settings.filter = "";
    settings.from = "12:47:30";
    Selection late(settings);
    EXPECT_EQ(Operations(late), (Names{"SetChannel", "changed"}));
    settings.to = "2026-11-22T12:47:40";
    Selection middle(settings);
    EXPECT_EQ(Operations(middle), (Names{"SetChannel"}));
}

TEST_F(SelectionTest, LearnsNamesFromWhatIsNotSelected) {
    Write({GetName(), SetChannel(0, 1)});
    SelectionSettings settings = Settings();
    settings.filter = "op:SetChannel";
    Selection selection(settings);
    EXPECT_EQ(Operations(selection), (Names{"SetChannel"}));
    EXPECT_EQ(selection.Names().Of(0x1388f0af), "Das Erste HD");
}

TEST(ParseTime, TakesTimesOfTheZone) {
    EXPECT_EQ(ParseTime("12:47:25.458629", "+01:00", kWall), kWall);
    EXPECT_EQ(ParseTime("11:47:25.458629", "", kWall), kWall);
    EXPECT_EQ(ParseTime("2026-11-22T12:47:25.458629", "+01:00", 0), kWall);
    EXPECT_EQ(ParseTime("12:47", "+01:00", kWall), kWall - 25458629 + 86400 * kSecond) << "of the next day";
    EXPECT_EQ(ParseTime("00:30", "-11:30", kWall), ParseTime("12:00", "", kWall)) << "the day is that of the zone";
    for (const char* wrong : {"", "7", "25:00", "12:60", "12:47:60", "12:47:25.", "12:47:25x", "2026-13-01T00:00",
                              "T12:00", "12:", ":12", "-1:00", "2026-11-22"}) {
        EXPECT_THROW(ParseTime(wrong, "", kWall), Failure) << wrong;
    }
}

TEST_F(SelectionTest, FollowsAHandleFromItsOriginToItsUseAfterTheEnd) {
    const std::string vb = R"("vb_handle":"0x1000","type":3)";
    Record foreign = Exchange("service_hbbtv_to_plugin_vb",
                              R"({"context":"0x9","error":0,"event":1,"state":2,"type":"videobroadcast"})");
    Record own = foreign;
    own.message.json["context"] = "0x7b20";
    Write(
        {SetChannel(0, 1),
         Exchange(kVideoBroadcast, R"({"context":"0x7b20","method":0,"type":3})", R"({"ret":0,"vb_handle":"0x2000"})"),
         Exchange(kVideoBroadcast, R"({"context":"0x7b20","method":3,"type":3,"vb_handle":"0x2000"})", R"({"ret":0})"),
         foreign, own, GetName(),
         Exchange(kVideoBroadcast, R"({"method":1,"type":3,"vb_handle":"0x2000"})", R"({"ret":0})"),
         Exchange(kVideoBroadcast, R"({"method":7,"type":3,"vb_handle":"0x2000"})", R"({"ret":-1})")});
    SelectionSettings settings = Settings();
    settings.follow = 0x2000;
    Selection selection(settings);
    EXPECT_EQ(Operations(selection),
              (Names{"Create", "RegisterCallback", "TOLM_VB_EVENT_PLAY_STATE", "Release", "GetPlayState"}));
    const std::vector<std::string> facts = selection.Followed()->Facts();
    ASSERT_EQ(facts.size(), 4u);
    EXPECT_EQ(facts[0].find("from the reply of video_broadcast.Create"), 0u) << facts[0];
    EXPECT_EQ(facts[1], "3 requests, 1 failed; 1 event");
    EXPECT_EQ(facts[2].find("released by video_broadcast.Release"), 0u) << facts[2];
    EXPECT_EQ(facts[3].find("used after its release 1 time, first by video_broadcast.GetPlayState"), 0u) << facts[3];
}

TEST_F(SelectionTest, RedactsWhatIdentifiesATelevision) {
    const Record serial = Exchange("service_plugin_to_hbbtv_local_system", R"({"method":12,"type":6})",
                                   R"({"ret":0,"serialNumber":"DE-118842"})");
    Record url = SetChannel(0, 1);
    url.message.json["url"] = "http://a.example/p/DE-118842?user=anna#top https://b.example/?user=anna&x";
    url.note = "see http://c.example?user=anna";
    Record raw = GetName("DE-118842 is not JSON");
    Write({serial, url, raw, serial});
    SelectionSettings settings = Settings();
    settings.redacted = true;
    Selection selection(settings);
    EXPECT_EQ(selection.Head().directory, "redacted");
    std::string all;
    std::vector<Record> records;
    while (std::optional<Record> record = selection.Next()) {
        all += WriteJson(ToJson(*record)) + "\n";
        records.push_back(*record);
    }
    ASSERT_EQ(records.size(), 4u);
    for (const char* secret : {"118842", "anna"}) EXPECT_EQ(all.find(secret), std::string::npos) << all;
    EXPECT_EQ(records[1].message.json["url"].asString(),
              "http://a.example/p/redacted-1?redacted-2#redacted-3 https://b.example/?redacted-4");
    EXPECT_EQ(records[1].note, "see http://c.example?redacted-2") << "equal queries are equal";
    EXPECT_EQ(PayloadOf(*records[2].reply), "redacted");
    EXPECT_EQ(records[3].reply->json["serialNumber"], records[0].reply->json["serialNumber"]);
    EXPECT_EQ(records[1].message.json["channel"].asString(), "0x1388f0af") << "the rest stays";
}

TEST_F(SelectionTest, FiltersByWhatItThenRedacts) {
    Write({Exchange("service_plugin_to_hbbtv_local_system", R"({"method":12,"type":6})",
                    R"({"ret":0,"serialNumber":"DE-118842"})"),
           GetName(R"({"name":"DE-118842","ret":0})"), GetName()});
    SelectionSettings settings = Settings();
    settings.redacted = true;
    settings.filter = "op:GetName 118842";
    Selection selection(settings);
    const std::optional<Record> record = selection.Next();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->reply->json["name"].asString(), "redacted-1") << "by an id of a record that is not selected";
    EXPECT_FALSE(selection.Next());
}

}  // namespace
}  // namespace hbbtv::traffic::test
