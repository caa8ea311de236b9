// Recordings: what is written is read again, and files that are damaged are read as far as possible.
#include "traffic/record/recording.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>

#include "common/failure.h"
#include "common/text/json.h"
#include "scratch_directory.h"

namespace hbbtv::traffic {
namespace {

Record GetName() {
    Record record;
    record.number = 1;
    record.time = TimeStamp(1700000000000001, 12345);
    record.connection = 3;
    record.message = {kRequest, 2, 0, {}, ""};
    SetPayload(record.message, R"({"c_handle":"0x1000","method":9,"type":12})");
    record.reply = Message{kReply, 2, 20, {}, ""};
    SetPayload(*record.reply, "\x01 not JSON");
    record.duration = 700;
    record.library = {4711, 1000, "service"};
    Identify(record, "service_plugin_to_hbbtv_vb_chn");
    return record;
}

struct RecordingTest : testing::Test {
    std::string Path() const { return directory.Path() + "/traffic.ndjson"; }

    void Append(const std::string& text) const { std::ofstream(Path(), std::ios::app) << text; }

    test::ScratchDirectory directory;
};

TEST_F(RecordingTest, ReadsWhatWasWritten) {
    const Record written = GetName();
    RecordingWriter writer(Path(), {kRecordingVersion, "hbbtvctl 1.0.0", "/tmp/tv", "+01:00", TimeStamp(5, 6)});
    EXPECT_EQ(writer.Write(written), "");
    RecordingReader reader(Path());
    EXPECT_EQ(reader.Head().program, "hbbtvctl 1.0.0");
    EXPECT_EQ(reader.Head().zone, "+01:00");
    EXPECT_EQ(reader.Head().time.Wall(), 5u);
    const std::optional<Record> read = reader.Next();
    ASSERT_TRUE(read);
    EXPECT_EQ(WriteJson(ToJson(*read)), WriteJson(ToJson(written)));
    EXPECT_EQ(read->family, "channel");
    EXPECT_FALSE(read->operation.empty());
    EXPECT_EQ(PayloadOf(*read->reply), "\x01 not JSON");
    EXPECT_FALSE(reader.Next());
    EXPECT_EQ(reader.Skipped(), 0u);
}

TEST_F(RecordingTest, IsNotWrittenOverAFile) {
    Append("the user's\n");
    EXPECT_THROW(RecordingWriter(Path(), {}), Failure);
    std::string kept;
    std::getline(std::ifstream(Path()) >> std::ws, kept);
    EXPECT_EQ(kept, "the user's");
}

TEST_F(RecordingTest, LinesThatCannotBeReadAreNamedAndTheOthersAreRead) {
    RecordingWriter writer(Path(), {});
    writer.Write(GetName());
    Append("{\"number\":2}\nno line of a recording\n");
    writer.Write(GetName());
    const std::string whole = WriteJson(ToJson(GetName()));
    Append(whole.substr(0, whole.size() / 2));
    RecordingReader reader(Path());
    EXPECT_TRUE(reader.Next());
    EXPECT_TRUE(reader.Next());
    EXPECT_FALSE(reader.Next());
    ASSERT_EQ(reader.Problems().size(), 3u);
    EXPECT_EQ(reader.Problems()[0], Path() + ":3: \"kind\" is missing");
    EXPECT_NE(reader.Problems()[1].find(":4: not valid JSON"), std::string::npos);
    EXPECT_NE(reader.Problems()[2].find(":6: cut"), std::string::npos);
}

TEST_F(RecordingTest, OtherFilesAreRefusedWithTheReason) {
    const auto problem = [this] {
        try {
            RecordingReader reader(Path());
        } catch (const Failure& e) {
            return std::string(e.what());
        }
        return std::string("none");
    };
    Append("");
    EXPECT_NE(problem().find("it is empty"), std::string::npos);
    Append("11-22 10:00:00.000 I service: hello\n");
    EXPECT_NE(problem().find("line 1"), std::string::npos);
    std::ofstream(Path()) << "{\"recording\":99}\n";
    EXPECT_NE(problem().find("version 99"), std::string::npos);
}

TEST_F(RecordingTest, AFullDiskCutsNoRecord) {
    RecordingWriter writer(Path(), {});
    EXPECT_EQ(writer.Write(GetName()), "");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limit = before;
    limit.rlim_cur = std::ifstream(Path(), std::ios::ate).tellg() + std::streamoff{50};
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_NE(writer.Write(GetName()), "");
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(writer.Write(GetName()), "");
    RecordingReader reader(Path());
    EXPECT_TRUE(reader.Next());
    EXPECT_TRUE(reader.Next());
    EXPECT_FALSE(reader.Next());
    EXPECT_EQ(reader.Skipped(), 0u);
}

}  // namespace
}  // namespace hbbtv::traffic
