// The files of the object carousel: requests, events, and URLs that must not lead out of it.
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>

#include "simulator_fixture.h"

namespace hbbtv::test {
namespace {

// What the events mean.
const char* const kArrived = "file ready";
const char* const kChanged = "file changed";
const char* const kMissing = "file not found";
const char* const kLost = "carousel lost";
const char* const kOnItsWay = "file pending";

class Dsmcc : public SimulatorFixture {
  protected:
    Dsmcc() { mFamily = "dsmcc"; }

    using Files = std::map<std::string, std::string>;

    // Starts with a carousel of these files, on the channel One (1.1.1).
    void Begin(const Files& files = {{"index.html", "hello"}, {"img/a.png", "picture"}}) {
        std::filesystem::create_directory(Carousel());
        for (const auto& [path, content] : files) {
            std::filesystem::create_directories(std::filesystem::path(Carousel() + "/" + path).parent_path());
            WriteFile(Carousel() + "/" + path, content);
        }
        Start({"--carousel", Carousel()});
        ServeEvents("dsmcc");
    }

    std::string Carousel() const { return mDirectory / "carousel"; }
    std::string Received() const { return mDirectory / "hbbtv_sim_carousel"; }

    // Asks for a file as the library does: one-way.
    void Request(const std::string& url, const std::string& context = "0x5a10") {
        Send("RequestFile", {{"url", url}, {"context", context}});
    }

    // Asks for a file with a reply, which shows whether the URL is refused.
    int RequestAndWait(const std::string& url) { return Ret("RequestFile", {{"url", url}, {"context", "0x1"}}); }

    int ReleaseFile(const std::string& url, const std::string& context = "0x5a10") {
        return Ret("ReleaseFile", {{"url", url}, {"context", context}});
    }

    // Expects this event for this URL next and returns the path of its file.
    std::string Expect(const std::string& name, const std::string& url, const std::string& context = "0x5a10") {
        const Event event = NextEventOf("dsmcc");
        EXPECT_EQ(event.name, name) << mSimulator->Output();
        EXPECT_EQ(event.members["url"], url);
        EXPECT_EQ(event.members["context"], context);
        const std::string path = event.members["filePath"].asString();
        EXPECT_EQ(path.empty(), name != kArrived && name != kChanged) << path;
        return path;
    }

    // Asks for a file, expects this event for it next and returns the path of its file.
    std::string Requested(const std::string& name, const std::string& url) {
        Request(url);
        return Expect(name, url);
    }

    // Expects that the URL gets this status and then this event, for a context of its own.
    void ExpectAnswer(const std::string& url, int ret, const std::string& name) {
        SCOPED_TRACE(url);
        EXPECT_EQ(RequestAndWait(url), ret);
        Expect(name, url, "0x1");
    }
};

const char* const kIndex = "dvb://1.1.1.17/index.html";

TEST_F(Dsmcc, AFileComesToADirectoryOfTheTelevisionUntilItIsReleased) {
    Begin();
    const std::string path = Requested(kArrived, kIndex);
    EXPECT_EQ(path.rfind(Received() + "/", 0), 0u) << path;
    EXPECT_EQ(std::filesystem::path(path).filename(), "index.html");
    EXPECT_EQ(ContentOf(path), "hello");
    EXPECT_EQ(ReleaseFile(kIndex), 0);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(ReleaseFile(kIndex), -1) << "it was released";
    EXPECT_EQ(ReleaseFile("dvb://1.1.1.17/img/a.png"), -1) << "it was never asked for";
}

TEST_F(Dsmcc, AFileIsThereForAsLongAsSomebodyUsesIt) {
    Begin();
    Request(kIndex, "0x1");
    Request(kIndex, "0xf0000002");
    const std::string path = Expect(kArrived, kIndex, "0x1");
    EXPECT_EQ(Expect(kArrived, kIndex, "0xf0000002"), path) << "both use the same copy";
    EXPECT_EQ(ReleaseFile(kIndex, "0x1"), 0);
    EXPECT_EQ(ContentOf(path), "hello");
    EXPECT_EQ(ReleaseFile(kIndex, "0xf0000002"), 0);
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(Dsmcc, TheEndOfTheSimulatorLeavesNoFile) {
    Begin();
    EXPECT_TRUE(std::filesystem::exists(Requested(kArrived, kIndex)));
    EXPECT_EQ(Stop(), 0);
    EXPECT_FALSE(std::filesystem::exists(Received()));
}

TEST_F(Dsmcc, WhatAKilledSimulatorLeftIsRemovedWithTheFirstFile) {
    std::filesystem::create_directories(Received() + "/7");
    WriteFile(Received() + "/7/old.html", "old");
    Begin();
    EXPECT_TRUE(std::filesystem::exists(Received() + "/7/old.html"));
    Requested(kArrived, kIndex);
    EXPECT_FALSE(std::filesystem::exists(Received() + "/7"));
}

TEST_F(Dsmcc, ALinkInsteadOfTheirDirectoryIsNotFollowed) {
    std::filesystem::create_directory(mDirectory / "precious");
    WriteFile(mDirectory / "precious/file", "mine");
    std::filesystem::create_directory_symlink(mDirectory / "precious", Received());
    Begin();
    Requested(kMissing, kIndex);
    EXPECT_EQ(Stop(), 0);
    EXPECT_EQ(ContentOf(mDirectory / "precious/file"), "mine");
}

TEST_F(Dsmcc, QueryFragmentAndEscapesOfTheUrlAreUnderstood) {
    Begin({{"a b/\xc3\xa4#.html", "found"}});
    for (const std::string url : {"dvb://1.1.1.17/a%20b/%C3%A4%23.html", "dvb://1.1.1.17/a b/\xc3\xa4%23.html?x=../y",
                                  "dvb://1.1.1.17/a%20b/%c3%a4%23.html#/../../etc"}) {
        EXPECT_EQ(ContentOf(Requested(kArrived, url)), "found") << url;
    }
}

TEST_F(Dsmcc, AFileThatIsNotThereIsMissingAndComesWhenItIsSent) {
    Begin();
    const std::string url = "dvb://1.1.1.17/new.html";
    Requested(kMissing, url);
    WriteFile(Carousel() + "/new.html", "new");
    EXPECT_EQ(Tell("carousel-change new.html"), "ok version 1");
    EXPECT_EQ(ContentOf(Expect(kArrived, url)), "new");
    std::filesystem::remove(Carousel() + "/new.html");
    EXPECT_EQ(Tell("carousel-change new.html"), "ok version 2");
    Expect(kMissing, url);
    EXPECT_EQ(ReleaseFile(url), 0);
}

TEST_F(Dsmcc, ANewVersionIsReportedToThoseWhoHaveTheFile) {
    Begin();
    const std::string before = Requested(kArrived, kIndex);
    WriteFile(Carousel() + "/index.html", "hello again");
    EXPECT_EQ(Tell("carousel-change index.html"), "ok version 1");
    const std::string after = Expect(kChanged, kIndex);
    EXPECT_NE(after, before);
    EXPECT_EQ(ContentOf(after), "hello again");
    EXPECT_EQ(ContentOf(before), "hello") << "a client may be reading it";
    EXPECT_EQ(ReleaseFile(kIndex), 0);
    EXPECT_FALSE(std::filesystem::exists(before));
    EXPECT_FALSE(std::filesystem::exists(after));
}

TEST_F(Dsmcc, AVersionThatChangesWhileTheFileIsOnItsWayIsTheOneThatComes) {
    Begin({{"index.html", "first"},
           {"carousel.json", R"({"files": [{"path": "index.html", "version": 255, "delay": "300ms"}]})"}});
    Requested(kOnItsWay, kIndex);
    WriteFile(Carousel() + "/index.html", "second");
    EXPECT_EQ(Tell("carousel-change index.html"), "ok version 0");
    Expect(kOnItsWay, kIndex);
    EXPECT_EQ(ContentOf(Expect(kArrived, kIndex)), "second");
    EXPECT_EQ(Tell("carousel-change index.html"), "ok version 1");
    Expect(kOnItsWay, kIndex);
    Expect(kChanged, kIndex);
}

TEST_F(Dsmcc, AFileCanChangeByItself) {
    Begin(
        {{"index.html", "x"}, {"carousel.json", R"({"files": [{"path": "index.html", "newVersionEvery": "50ms"}]})"}});
    const std::string first = Requested(kArrived, kIndex);
    const std::string second = Expect(kChanged, kIndex);
    const std::string third = Expect(kChanged, kIndex);
    EXPECT_TRUE(first != second && second != third);
}

TEST_F(Dsmcc, AFileThatIsReleasedOnItsWayNeverArrives) {
    Begin({{"index.html", "x"},
           {"other.html", "y"},
           {"carousel.json", R"({"delay": "100ms", "files": [{"path": "other.html", "delay": "400ms"}]})"}});
    const std::string other = "dvb://1.1.1.17/other.html";
    Requested(kOnItsWay, kIndex);
    EXPECT_EQ(ReleaseFile(kIndex), 0);
    Requested(kOnItsWay, other);
    Expect(kArrived, other);
}

TEST_F(Dsmcc, AFileAboveItsSizeLimitIsMissing) {
    Begin({{"four", "1234"},
           {"five", "12345"},
           {"carousel.json", R"({"sizeLimit": 1, "files": [{"path": "four", "sizeLimit": 4},
                                                           {"path": "five", "sizeLimit": 4}]})"}});
    EXPECT_EQ(ContentOf(Requested(kArrived, "dvb://1.1.1.17/four")), "1234");
    Requested(kMissing, "dvb://1.1.1.17/five");
    EXPECT_TRUE(mSimulator->WaitForOutput("five cannot be received: it is larger than 4 bytes"));
}

TEST_F(Dsmcc, TheCarouselOfAServiceThatIsNotOnIsNotReceived) {
    Begin();
    for (const std::string url : {"dvb://1.1.2.17/index.html", "dvb://1.2.1.17/index.html", "dvb://2.1.1.17/index.html",
                                  "dvb://1.1.1.18/index.html"}) {
        Requested(kLost, url);
        EXPECT_EQ(ReleaseFile(url), 0);
    }
}

TEST_F(Dsmcc, AChangeOfChannelEndsTheUseOfEveryFile) {
    Begin();
    const std::string path = Requested(kArrived, kIndex);
    EXPECT_EQ(Tell("zap 1"), "ok One") << "it is on, so nothing changes";
    EXPECT_EQ(Tell("zap 2"), "ok Two");
    Expect(kLost, kIndex);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(Tell("carousel-change index.html"), "ok version 1");
    const std::string there = "dvb://1.1.2.17/index.html";
    Requested(kArrived, there);
    EXPECT_EQ(ReleaseFile(kIndex), 0);
}

TEST_F(Dsmcc, WithoutACarouselNothingIsReceived) {
    Start();
    ServeEvents("dsmcc");
    Requested(kLost, kIndex);
    EXPECT_EQ(Tell("carousel-change index.html"), "error: there is no carousel (see --carousel)");
}

TEST_F(Dsmcc, ASideFileCanGiveTheCarouselToOneServiceUnderAnotherTag) {
    Begin({{"index.html", "x"},
           {"carousel.json", R"({"componentTag": 200, "service": {"onid": 1, "tsid": 1, "sid": 2}})"}});
    Requested(kLost, "dvb://1.1.1.c8/index.html");
    EXPECT_EQ(Tell("zap 2"), "ok Two");
    Requested(kArrived, "dvb://1.1.2.c8/index.html");
}

TEST_F(Dsmcc, AnApplicationOfTheCurrentServiceIsItsFirstFile) {
    Begin({{"app/start.html", "application"},
           {"carousel.json",
            R"({"applications": [{"organisation": 19, "application": 501, "start": "app/start.html"}]})"}});
    const std::string url = "dvb://current.ait/13.1f5?autoshow=1";
    EXPECT_EQ(ContentOf(Requested(kArrived, url)), "application");
    EXPECT_EQ(RequestAndWait("dvb://current.ait/13.1f6"), -1) << "it is not signalled";
    Expect(kMissing, "dvb://current.ait/13.1f6", "0x1");
}

TEST_F(Dsmcc, NoPathLeadsOutOfTheCarousel) {
    WriteFile(mDirectory / "secret", "secret");
    std::filesystem::create_directory(mDirectory / "outside");
    WriteFile(mDirectory / "outside/secret", "secret");
    Begin({{"index.html", "x"}, {"dir/file", "x"}, {"%2e%2e/file", "x"}, {"carousel.json", "{}"}});
    std::filesystem::create_symlink(mDirectory / "secret", Carousel() + "/link");
    std::filesystem::create_symlink("index.html", Carousel() + "/inside");
    std::filesystem::create_directory_symlink(mDirectory / "outside", Carousel() + "/linked");
    ASSERT_EQ(mkfifo((Carousel() + "/pipe").c_str(), 0600), 0);
    const std::string carousel = "dvb://1.1.1.17/";
    const std::vector<std::string> refused{"../secret",
                                           "dir/../../secret",
                                           "dir/../index.html",
                                           "..",
                                           "%2e%2e/secret",
                                           "%2E%2e%2fsecret",
                                           ".%2e/secret",
                                           "dir%2ffile",
                                           "..\\secret",
                                           "dir%5cfile",
                                           "index.html%00.png",
                                           "./index.html",
                                           "dir//file",
                                           "/index.html",
                                           "",
                                           "dir/",
                                           "%",
                                           "%2",
                                           "%zz",
                                           "%c0%ae%c0%ae/secret",
                                           "%ff",
                                           "%0a"};
    for (const std::string& path : refused) {
        ExpectAnswer(carousel + path, -1, kMissing);
        EXPECT_EQ(ReleaseFile(carousel + path, "0x1"), -1) << path << " is not in use, as it was refused";
    }
    for (const std::string path :
         {"link", "linked/secret", "inside", "dir", "pipe", "index.html/x", "carousel.json", "%252e%252e/secret"}) {
        ExpectAnswer(carousel + path, 0, kMissing);
        EXPECT_EQ(ReleaseFile(carousel + path, "0x1"), 0) << path;
    }
    ExpectAnswer(carousel + std::string("index.html\0x", 12), -1, kMissing);
    ExpectAnswer(carousel + "%252e%252e/file", 0, kArrived);
}

TEST_F(Dsmcc, WhatIsNotACarouselUrlIsRefused) {
    Begin();
    for (const std::string url :
         {"", "index.html", "http://1.1.1.17/index.html", "dvb://", "dvb://1.1.1.17", "dvb://1.1.1/index.html",
          "dvb://1.1.1.17.2/index.html", "dvb://1.1.10000.17/index.html", "dvb://1.1.1.100/index.html",
          "dvb://1.1..17/index.html", "dvb://0x1.1.1.17/index.html", "dvb://-1.1.1.17/index.html", "dvb://current.ait/",
          "dvb://current.ait/13", "dvb://current.ait/13.1f5.1", "dvb://current.ait/13.10000", "dvb://current.ait/x.y",
          "dvb://1.1.1.17?/index.html"}) {
        ExpectAnswer(url, -1, kMissing);
    }
    ExpectAnswer("dvb://1.1.1.17/" + std::string(5000, 'x'), -1, kMissing);
    EXPECT_EQ(Ret("RequestFile", {{"url", kIndex}}), -1) << "no context";
    EXPECT_EQ(Ret("RequestFile", {{"context", "0x1"}}), -1) << "no URL";
    ExpectOtherCodesRefused("dsmcc", "", {{"url", kIndex}, {"context", "0x1"}});
}

TEST_F(Dsmcc, AtMostAThousandFilesAreInUse) {
    Begin();
    for (int i = 0; i < 1000; ++i) {
        const std::string url = std::string(kIndex) + "?" + std::to_string(i);
        ASSERT_EQ(RequestAndWait(url), 0);
        Expect(kArrived, url, "0x1");
    }
    EXPECT_EQ(RequestAndWait(kIndex), -1);
    EXPECT_EQ(ReleaseFile(std::string(kIndex) + "?0", "0x1"), 0);
    EXPECT_EQ(RequestAndWait(kIndex), 0);
}

TEST_F(Dsmcc, AnInvalidSideFileExitsWithCode3AndThePlace) {
    std::filesystem::create_directory(Carousel());
    const std::map<std::string, std::string> rows{
        {R"({"delays": "1s"})", "1:12: a carousel has no member \"delays\"; did you mean \"delay\"?"},
        {R"({"delay": "soon"})", "is \"soon\", which is not a duration: write 300ms or 2s"},
        {R"({"files": [{"path": "../x"}]})", "is not a path in the carousel: the path has the name \"..\""},
        {R"({"files": [{"path": "a"}, {"path": "a"}]})", "is the path of another file"},
        {R"({"files": [{"path": "a", "version": 256}]})", "is 256 but must be from 0 to 255"},
        {R"({"files": [{"path": "a", "newVersionEvery": "1ms"}]})", "is shorter than 10ms"},
        {R"({"files": [{}]})", "the file lacks the member \"path\""},
        {R"({"sizeLimit": -1})", "is -1 but must be from 0 to 16777216"},
        {R"({"applications": [{"organisation": 1, "application": 1, "start": "/"}]})", "has an empty name"},
        {"[]", "a carousel is not an object"},
        {"", "the file is empty"}};
    for (const auto& [text, sentence] : rows) {
        WriteFile(Carousel() + "/carousel.json", text);
        const Outcome outcome = Run({"--carousel", Carousel()});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.output.rfind("hbbtv-sim: cannot read " + Carousel() + "/carousel.json:1:", 0), 0u);
        EXPECT_NE(outcome.output.find(sentence), std::string::npos) << outcome.output;
    }
    EXPECT_EQ(Run({"--carousel", mDirectory / "nowhere"}).exitCode, 3);
    EXPECT_FALSE(std::filesystem::exists(RequestSocket()));
}

}  // namespace
}  // namespace hbbtv::test
