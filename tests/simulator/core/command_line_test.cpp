// The program from outside: start, end, sockets, options, exit codes, faults, trace and tell.
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <regex>
#include <sstream>

#include "common/text/pointer_text.h"
#include "presentation/video_broadcast_fixture.h"
#include "wait_for.h"
#include "wire/endpoint.h"

namespace hbbtv::test {
namespace {

class CommandLine : public VideoBroadcastFixture {
  protected:
    bool SocketExists() const { return std::filesystem::exists(RequestSocket()); }
};

TEST_F(CommandLine, TheDefaultLineUpIsServedAndPrintedAtTheStart) {
    const auto program = Launch({});
    ASSERT_TRUE(program->WaitForOutput("ready\n"));
    const std::string text = program->Output();
    EXPECT_NE(text.find("35 channels and 4 services outside the channel list, on: Das Erste HD"), std::string::npos)
        << text;
    EXPECT_NE(text.find("serving: " + RequestSocket() + " (video_broadcast)"), std::string::npos) << text;
    struct stat file {};
    ASSERT_EQ(stat(RequestSocket().c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 07777, 0777u);
    EXPECT_TRUE(S_ISSOCK(file.st_mode));
}

TEST_F(CommandLine, BothSignalsEndItWithCode0AndItsSocketsGo) {
    for (const int signal : {SIGTERM, SIGINT}) {
        const auto program = Launch({});
        ASSERT_TRUE(program->WaitForOutput("ready\n"));
        const RawClient connected(RequestSocket());
        program->Signal(signal);
        EXPECT_EQ(program->WaitForExit(), 0);
        EXPECT_TRUE(std::filesystem::is_empty(mDirectory.Path()));
    }
}

TEST_F(CommandLine, AnUnusedSocketFileIsReplaced) {
    { LibraryStandIn stale(RequestSocket()); }
    auto program = Launch({});
    ASSERT_TRUE(program->WaitForOutput("ready\n"));
    program->Kill();
    EXPECT_TRUE(SocketExists()) << "left behind, as after a crash";
    program = Launch({});
    EXPECT_TRUE(program->WaitForOutput("ready\n")) << program->Output();
}

TEST_F(CommandLine, ASecondSimulatorInTheSameDirectoryExitsWithCode4AndDoesNotDisturbTheFirst) {
    Start();
    ExpectEnd({}, 4, "another process serves it");
    EXPECT_EQ(RetOf("0x1", "Create"), 0);
    EXPECT_TRUE(SocketExists());
}

TEST_F(CommandLine, AFileInTheWayIsNotRemoved) {
    WriteFile(RequestSocket(), "precious");
    ExpectEnd({}, 4, "is not a socket");
    EXPECT_TRUE(SocketExists());
}

TEST_F(CommandLine, ADirectoryThatDoesNotExistOrIsTooLongEndsWithCode4) {
    EXPECT_EQ(Run({"--directory", mDirectory / "nowhere"}).exitCode, 4);
    ExpectEnd({"--directory", mDirectory / std::string(100, 'd')}, 4, "longer than 107 characters");
}

TEST_F(CommandLine, ASocketOfAnotherProcessIsNotRemoved) {
    const auto program = Launch({});
    ASSERT_TRUE(program->WaitForOutput("ready\n"));
    const LibraryStandIn other(RequestSocket());
    program->Signal(SIGTERM);
    EXPECT_EQ(program->WaitForExit(), 0);
    EXPECT_TRUE(SocketExists());
}

TEST_F(CommandLine, TheDirectoryOptionOverridesTheEnvironment) {
    const std::string directory = mDirectory / "other";
    std::filesystem::create_directory(directory);
    const auto program = Launch({"--directory", directory});
    ASSERT_TRUE(program->WaitForOutput("ready\n"));
    EXPECT_TRUE(RawClient(directory + "/" + RequestsOf(FindFamily("video_broadcast")).socket).Connected());
    EXPECT_FALSE(SocketExists());
}

TEST_F(CommandLine, WrongOptionsExitWithCode2AndAMessage) {
    const std::map<std::vector<std::string>, std::string> wrong{
        {{"--nonsense"}, "--nonsense"},
        {{"--tune-time", "fast"}, "\"fast\" is not a duration"},
        {{"--tune-time", "-1ms"}, "--tune-time"},
        {{"--tune-time", "100h"}, "is not a duration"},
        {{"--stream-event-interval", ""}, "is not a duration"},
        {{"--ping-interval", "often"}, "\"often\" is not a duration"},
        {{"--seed", "x"}, "--seed"},
        {{"--carousel", ""}, "the name is empty"},
        {{"--stream-events", ""}, "the name is empty"},
        {{"--permanent-error", "none"}, "channel-changed"},
        {{"--fault", "smoke"}, "\"smoke\" is not a fault"},
        {{"--fault", "stop-answering:video"}, "did you mean \"video_broadcast\"?"}};
    for (const auto& entry : wrong) {
        ExpectEnd(entry.first, 2, entry.second);
    }
    EXPECT_TRUE(std::filesystem::is_empty(mDirectory.Path()));
}

TEST_F(CommandLine, HelpAndVersionEndWithCode0) {
    ExpectEnd({"--help"}, 0, "Examples:");
    const Outcome version = Run({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.output, "hbbtv-sim " HBBTV_VERSION "\n");
}

TEST_F(CommandLine, ARefusedLineUpEndsWithCode3AndThePlace) {
    const std::string path = mDirectory / "bad.json";
    EXPECT_EQ(Run({"--line-up", path}).exitCode, 3);
    WriteFile(path, "{\n  \"networks\": [],\n  \"service\": []\n}\n");
    const Outcome outcome = Run({"--line-up", path});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.output, "hbbtv-sim: cannot read " + path +
                                  ":3:14: a line-up has no member \"service\"; did you mean \"services\"?\n");
    EXPECT_EQ(Run({"--line-up", mDirectory.Path()}).exitCode, 3) << "a directory is not a line-up";
}

TEST_F(CommandLine, TraceHasOneLinePerRequestWithItsReplyAndPerEvent) {
    Start({"--trace"});
    const std::string vb = NewObject("0xabc");
    Tune(vb, 2);
    ExpectOtherCodesRefused("video_broadcast");
    ASSERT_TRUE(mSimulator->WaitForOutput("> ? "));
    const std::string text = mSimulator->Output();
    const auto shown = [](const std::string& handle) { return HandleText(std::stoul(handle, nullptr, 16)); };
    const std::string channel = shown(Channel(vb, 2));
    for (const std::string& line :
         {"> Create context=0x00000abc | < ret=0 vb_handle=" + shown(vb) + " (",
          "> SetChannel channel=" + channel + " trickPlay=false url=\"\" vb_handle=" + shown(vb) + " | < ret=0 (",
          std::string("* TOLM_VB_EVENT_PLAY_STATE context=0x00000abc error=0 state=1\n"),
          "* TOLM_VB_EVENT_CHANNEL_CHANGED channelHandle=" + channel +
              " context=0x00000abc quiet=0 viewerChannelHandle=",
          std::string("> ? | < ret=-1 (")}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
    }
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(" | < ") == std::string::npos && line.find("* ") == std::string::npos) continue;
        EXPECT_TRUE(std::regex_match(line, std::regex("\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d [>*] .*"))) << line;
    }
}

TEST_F(CommandLine, WithoutTraceItIsSilentAfterReady) {
    Start();
    const std::string before = mSimulator->Output();
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(mSimulator->Output(), before);
}

TEST_F(CommandLine, AFamilyThatStopsAnsweringIsSilentUntilTheAnswerCommand) {
    Start({"--fault", "stop-answering:video_broadcast"});
    const auto create = [this](int port) {
        ClientOf().Send(kRequest, port, RequestText("Create", {{"context", "0x1"}}));
    };
    create(1);
    EXPECT_EQ(Tell("answer video_broadcast"), "ok");
    create(2);
    auto reply = ClientOf().Receive();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->port, 2) << "the first request never gets a reply";
    EXPECT_EQ(Tell("stop-answering video_broadcast"), "ok");
    create(3);
    EXPECT_EQ(Tell("answer video_broadcast"), "ok");
    create(4);
    reply = ClientOf().Receive();
    ASSERT_TRUE(reply.has_value());
    EXPECT_EQ(reply->port, 4);
}

TEST_F(CommandLine, ARefusedTellPrintsTheReasonAndExitsWithCode1) {
    EXPECT_EQ(Run({"--tell", "zap next"}).exitCode, 1) << "no simulator runs";
    Start();
    const std::map<std::string, std::string> refused{
        {"zip next", "error: there is no command \"zip\"; did you mean \"zap\"?\n"},
        {"zap", "error: usage: zap next|previous|NUMBER\n"},
        {"zap 77", "error: there is no such channel in the list\n"},
        {"signal lost", "error: there is no video/broadcast object\n"},
        {"stop-answering video", "error: there is no family \"video\"; did you mean \"video_broadcast\"?\n"},
        {"fail much", "error: usage: fail [ERROR]\n"},
        {"record it", "error: usage: record\n"}};
    for (const auto& entry : refused) {
        const Outcome outcome = Run({"--tell", entry.first});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.output, entry.second);
    }
    EXPECT_EQ(Run({"--tell", "help"}).exitCode, 0);
    EXPECT_EQ(Run({"--tell", "help zap"}).output, "ok zap next|previous|NUMBER: change the channel\n");
    EXPECT_EQ(Run({"--tell", "help zup"}).output, "error: there is no command \"zup\"; did you mean \"zap\"?\n");
    EXPECT_EQ(Run({"--tell", "zap 2"}).output, "ok Two\n");
    EXPECT_EQ(Run({"--tell", "zap previous"}).output, "ok One\n");
    EXPECT_EQ(Run({"--tell", "zap previous"}).output, "ok Locked\n");
}

TEST_F(CommandLine, DamagedControlLinesEndNothing) {
    Start();
    RawClient endless(mDirectory / "hbbtv_sim_control");
    endless.SendBytes(std::string(100000, 'x'));
    EXPECT_TRUE(endless.SeesClose());
    RawClient odd(mDirectory / "hbbtv_sim_control");
    odd.SendBytes(std::string("\0\xff\n\n \n", 6));
    EXPECT_EQ(Tell("zap 2"), "ok Two");
}

TEST_F(CommandLine, AClosedOutputDoesNotEndIt) {
    const std::string pipe = mDirectory / "output";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const std::string command = std::string("exec ") + HBBTV_SIM_PROGRAM + " --trace > " + pipe + " 2>&1";
    mSimulator = std::make_unique<ChildProcess>(std::vector<std::string>{"sh", "-c", command});
    EXPECT_TRUE(WaitFor([&] { return RawClient(RequestSocket()).Connected(); }));
    close(reader);
    CloseConnections();
    for (int i = 0; i < 20; ++i) EXPECT_EQ(RetOf("0x1", "Create"), 0);
    EXPECT_EQ(Stop(), 0);
}

}  // namespace
}  // namespace hbbtv::test
