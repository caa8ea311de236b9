// hbbtvctl record import: the log of a real service, and files that are not logs.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "ctl.h"

namespace hbbtv::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class RecordImport : public InFrontOfTheSystem {
  protected:
    // Returns the exchanges in the service's log so far.
    std::vector<Json::Value> Import() {
        const std::string log = mDirectory / "service.log";
        WriteFile(log, mService->Output());
        mImported = Ctl({"record", "import", log});
        std::vector<Json::Value> records = Documents(mImported.output);
        const auto isOther = [](const Json::Value& record) { return record["kind"] != "exchange"; };
        records.erase(std::remove_if(records.begin(), records.end(), isOther), records.end());
        return records;
    }

    FinishedRun mImported;
};

std::vector<std::string> OperationsOf(const std::vector<Json::Value>& records) {
    std::vector<std::string> operations;
    for (const Json::Value& record : records) operations.push_back(record["operation"].asString());
    return operations;
}

TEST_F(RecordImport, HasWhatTheServiceHasExchanged) {
    ASSERT_EQ(Ctl({"log", "debug"}).exit, 0);
    const std::string channel = CurrentChannel();
    ASSERT_EQ(Ctl({"call", "IChannel.GetName", channel}).exit, 0);
    ASSERT_EQ(Ctl({"call", "IChannel.GetOnid", "1"}).exit, 1);
    Listener listener({"channel_config"});
    ASSERT_TRUE(listener.Listens()) << listener.Output();
    ASSERT_EQ(Ctl({"emit", "channel_config", "changed", "reserved=A", "--one-way"}).exit, 0);
    ASSERT_TRUE(listener.WaitForEvents(1));
    EXPECT_EQ(Ctl({"emit", "channel_config", "changed", "reserved=A", "--request"}).exit, 3) << "another context";
    ASSERT_TRUE(mService->WaitForOutput("and out_msg:null"));
    const std::vector<Json::Value> records = Import();
    EXPECT_EQ(mImported.exit, 0) << mImported.Text();
    EXPECT_THAT(OperationsOf(records),
                ElementsAre("GetCurrentChannel", "GetName", "GetOnid", "RegisterCallback", "changed", "changed"))
        << mImported.Text();
    EXPECT_THAT(mImported.errors, HasSubstr(" 0 messages cut, 0 mixed, 0 unknown; 0 lines lost\n"));
    EXPECT_EQ(records[1]["reply"]["json"]["name"], "Das Erste HD");
    EXPECT_EQ(records[1]["socket"], "service_plugin_to_hbbtv_vb_chn");
    EXPECT_EQ(records[1]["library"]["pid"], mService->Pid());
    EXPECT_EQ(records[2]["status"], -1);
    EXPECT_FALSE(records[1].isMember("duration_us"));
    EXPECT_EQ(records[5]["reply"]["base64"], "bnVsbA==") << "null, for no client";
}

TEST_F(RecordImport, HasDurationsFromTheLevelVerbose) {
    ASSERT_EQ(Ctl({"log", "verbose"}).exit, 0);
    CurrentChannel();
    ASSERT_TRUE(mService->WaitForOutput("GetCurrentChannel: LEAVE"));
    const std::vector<Json::Value> records = Import();
    ASSERT_EQ(OperationsOf(records), std::vector<std::string>{"GetCurrentChannel"});
    EXPECT_TRUE(records[0].isMember("duration_us")) << mImported.output;
}

TEST_F(RecordImport, NamesTheMessagesThatTheLogCuts) {
    ASSERT_EQ(Ctl({"log", "debug"}).exit, 0);
    std::string channels = CurrentChannel();
    for (int i = 0; i < 100; ++i) channels += ",0x1000";
    Ctl({"call", "IChannelConfig.CreateChannelList", "channels=" + channels});
    ASSERT_TRUE(mService->WaitForOutput("channel100"));
    const std::vector<Json::Value> records = Import();
    EXPECT_THAT(mImported.errors, HasSubstr("the log has cut channel_config.CreateChannelList"));
    EXPECT_THAT(mImported.errors, HasSubstr(" 1 message cut, 0 mixed, "));
    EXPECT_THAT(records.back()["note"].asString(), HasSubstr("the log has cut this after "));
}

class RecordImportAlone : public Alone {};

TEST_F(RecordImportAlone, LeavesNoFileForALogWithoutMessages) {
    WriteFile(mDirectory / "log.txt", "11-22 12:47:25.458  4711  4712 I hbbtv_service: serving\n");
    const FinishedRun run =
        Ctl({"record", "import", mDirectory / "log.txt", "--record", mDirectory / "traffic.ndjson"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.errors, HasSubstr("hbbtvctl: the log has no messages of the library; it writes them at the level "
                                      "debug, which `hbbtvctl log debug` sets\n"));
    EXPECT_THAT(ReadFile(mDirectory / "log.txt"), HasSubstr("serving"));
    EXPECT_NE(access((mDirectory / "traffic.ndjson").c_str(), F_OK), 0);
}

TEST_F(RecordImportAlone, RefusesWrongWordsAndFiles) {
    EXPECT_THAT(Ctl({"record", "export", "log.txt"}).errors, HasSubstr("expected \"import\""));
    EXPECT_THAT(Ctl({"record", "import", mDirectory / "absent"}).errors, HasSubstr("No such file or directory"));
    EXPECT_THAT(Ctl({"record", "import", "log.txt", "--zone", "CET"}).errors, HasSubstr("expected +01:00"));
    EXPECT_THAT(Ctl({"record", "import", "log.txt", "--year", "26"}).errors, HasSubstr("from 1970 to 2200"));
    const std::string log = HBBTV_SOURCE_DIR "/examples/traffic/logcat.txt";
    WriteFile(mDirectory / "here", "");
    EXPECT_THAT(Ctl({"record", "import", log, "--record", mDirectory / "here"}).errors, HasSubstr("exists: remove it"));
    EXPECT_THAT(Ctl({"show", log}).errors, HasSubstr("`hbbtvctl record` makes a recording of a log"));
}

}  // namespace

}  // namespace hbbtv::test
