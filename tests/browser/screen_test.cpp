// What a viewer sees: the picture of the channel below the applications, in pictures and in a window.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "application_system.h"
#include "common/failure.h"

namespace hbbtv::test {

namespace {

// The colours of the picture's first two bars.
const char* const kGrey = "191,191,191";
const char* const kYellow = "191,191,0";

// Returns the colours of a picture at these points, by a page that draws it.
std::string ColoursOf(const BrowserSystem& system, const std::string& picture, const std::string& points) {
    const std::string page =
        system.Write("colours.html",
                     "<!DOCTYPE html><title>Colours</title><script>\n"
                     "async function colours(points) {\n"
                     "    const image = Object.assign(new Image(), {src: '" +
                         picture +
                         "'});\n"
                         "    await image.decode();\n"
                         "    const canvas = new OffscreenCanvas(image.width, image.height).getContext('2d');\n"
                         "    canvas.drawImage(image, 0, 0);\n"
                         "    return points.map(([x, y]) => canvas.getImageData(x, y, 1, 1).data.slice(0, 3).join());\n"
                         "}\n</script>");
    const FinishedRun run = BrowserSystem::Run({page, "--alone", "--print", "colours(" + points + ")"});
    return run.output + run.errors;
}

std::string Application(const std::string& videoStyle) {
    return "<!DOCTYPE html><title>Application</title><style>body { margin: 0; } div, object { position: absolute; }"
           "</style><body><object id='video' type='video/broadcast' style='" +
           videoStyle +
           "'></object><div style='left: 0; top: 0; width: 100px; height: 100px; background: red'></div>"
           "<script>document.getElementById('video').bindToCurrentChannel();</script>";
}

// Whether the process has a handler for SIGUSR1.
bool TakesTheSignal(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("SigCgt:", 0) == 0) return (std::stoull(line.substr(7), nullptr, 16) >> (SIGUSR1 - 1) & 1) != 0;
    }
    return false;
}

// A display without a window manager. Its window has a title bar, whose height is Chromium's.
class Display {
  public:
    // Ended by a signal that lets the server remove its files.
    ~Display() {
        mServer.Signal(SIGTERM);
        mServer.WaitForExit();
    }
    bool Started() { return mServer.WaitForOutput("\n"); }
    std::string Variable() const { return "DISPLAY=" + mName; }

    // Clicks at the places where the red key may be.
    void ClickRed() const {
        std::vector<std::string> words;
        for (const int y : {60, 70, 80, 90, 100, 110}) {
            for (const std::string& word : {std::string("mousemove"), std::string("1325"), std::to_string(y),
                                            std::string("click"), std::string("1")})
                words.push_back(word);
        }
        Do(words);
    }

    void Press(const std::string& key) const { Do({"key", key}); }

  private:
    void Do(std::vector<std::string> words) const {
        words.insert(words.begin(), "xdotool");
        const FinishedRun run = RunToEnd(words, std::nullopt, {Variable()});
        EXPECT_EQ(run.exit, 0) << run.Text();
    }

    // Servers that look for a free number at the same time may find the same one.
    const std::string mName = ":" + std::to_string(1000 + getpid() % 50000);
    ChildProcess mServer{
        {"Xvfb", mName, "-displayfd", "1", "-screen", "0", "1600x900x24", "-nolisten", "tcp", "-noreset"}};
};

std::string ReadAll(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

TEST(Screen, ShowsThePictureOfTheChannelBelowTheApplication) {
    const BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const std::string page = system.Write("page.html", Application("left: 0; top: 0; width: 1280px; height: 720px"));
    const FinishedRun run =
        BrowserSystem::Run({page, "--until", "video.playState === 2", "--screenshot", system.directory / "all.png"});
    ASSERT_EQ(run.exit, kDone) << run.Text();
    EXPECT_EQ(ColoursOf(system, "all.png", "[[50, 50], [150, 50], [170, 50]]"),
              std::string("[\"255,0,0\",\"") + kGrey + "\",\"" + kYellow + "\"]\n");
}

TEST(Screen, ShowsThePictureWhereTheApplicationPlacesIt) {
    const BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const std::string page =
        system.Write("page.html", Application("left: 640px; top: 360px; width: 640px; height: 360px"));
    const FinishedRun run =
        BrowserSystem::Run({page, "--until", "video.playState === 2", "--screenshot", system.directory / "part.png"});
    ASSERT_EQ(run.exit, kDone) << run.Text();
    EXPECT_EQ(ColoursOf(system, "part.png", "[[50, 50], [630, 400], [650, 350], [650, 370], [730, 370]]"),
              std::string("[\"255,0,0\",\"0,0,0\",\"0,0,0\",\"") + kGrey + "\",\"" + kYellow + "\"]\n");
}

TEST(Screen, PlaysTheVideoThatHasTheNameOfTheChannel) {
    const BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const std::string recorder =
        system.Write("recorder.html",
                     "<!DOCTYPE html><title>Recorder</title><canvas width='320' height='180'></canvas><script>\n"
                     "async function record() {\n"
                     "    const canvas = document.querySelector('canvas');\n"
                     "    const context = canvas.getContext('2d');\n"
                     "    const recorder = new MediaRecorder(canvas.captureStream(25), {mimeType: 'video/webm'});\n"
                     "    const data = new Promise(got => { recorder.ondataavailable = ({data}) => got(data); });\n"
                     "    recorder.start();\n"
                     "    for (let i = 0; i < 10; ++i) {\n"
                     "        context.fillStyle = 'rgb(0, 0, 255)';\n"
                     "        context.fillRect(0, 0, 320, 180);\n"
                     "        await new Promise(done => setTimeout(done, 40));\n"
                     "    }\n"
                     "    recorder.stop();\n"
                     "    return btoa(String.fromCharCode(...new Uint8Array(await (await data).arrayBuffer())));\n"
                     "}</script>");
    const FinishedRun recorded = BrowserSystem::Run({recorder, "--alone", "--print", "record()"});
    ASSERT_GT(recorded.output.size(), 100u) << recorded.Text();
    std::filesystem::create_directory(system.directory / "videos");
    const std::string text = recorded.output.substr(1, recorded.output.rfind('"') - 1);
    RunToEnd({"sh", "-c", "base64 -d >\"$0\"", system.directory / "videos/Das Erste HD.webm"}, text);

    const std::string page = system.Write("page.html", "<!DOCTYPE html><title>Application</title>");
    const FinishedRun run = BrowserSystem::Run(
        {page, "--picture", system.directory / "videos", "--screenshot", system.directory / "video.png"});
    ASSERT_EQ(run.exit, kDone) << run.Text();
    // Compressed, so the blue is not exact.
    const std::string colour = ColoursOf(system, "video.png", "[[640, 360]]");
    int red = 255;
    int green = 255;
    int blue = 0;
    ASSERT_EQ(std::sscanf(colour.c_str(), "[\"%d,%d,%d", &red, &green, &blue), 3) << colour;
    EXPECT_LT(red, 40);
    EXPECT_LT(green, 40);
    EXPECT_GT(blue, 200);
}

TEST(Screen, IsWrittenToTheFileAtEachSignal) {
    const BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const std::string picture = system.directory / "picture.png";
    ChildProcess browser({HBBTV_BROWSER_PROGRAM, "--headless", "--screenshot", picture});
    ASSERT_TRUE(WaitFor([&] { return TakesTheSignal(browser.Pid()); }));
    for (int i = 0; i < 2; ++i) {
        browser.Signal(SIGUSR1);
        EXPECT_TRUE(WaitFor([&] { return std::filesystem::exists(picture); })) << browser.Output();
        std::filesystem::remove(picture);
    }
    browser.Signal(SIGINT);
    EXPECT_EQ(browser.WaitForExit(), kDone);
    EXPECT_EQ(browser.Output(), "");
}

TEST(Screen, IsInAWindowBesideARemoteControlIfThereIsADisplay) {
    const BrowserSystem system;
    ASSERT_TRUE(system.ready);
    Display display;
    ASSERT_TRUE(display.Started());
    const std::string picture = system.directory / "window.png";
    ChildProcess browser({HBBTV_BROWSER_PROGRAM, "--screenshot", picture}, {display.Variable()});
    ASSERT_TRUE(WaitFor([&] { return TakesTheSignal(browser.Pid()); }));
    browser.Signal(SIGUSR1);
    EXPECT_TRUE(WaitFor([&] { return std::filesystem::exists(picture); })) << browser.Output();
    browser.Signal(SIGINT);
    EXPECT_EQ(browser.WaitForExit(), kDone);
    EXPECT_EQ(browser.Output(), "");
    // The remote control is dark grey, a red key is at its upper left corner.
    EXPECT_EQ(ColoursOf(system, "window.png", "[[1285, 5], [1300, 30]]"), "[\"32,36,40\",\"221,51,51\"]\n");
}

TEST(Screen, SendsTheKeysOfItsRemoteControlAndOfTheKeyboardToTheApplication) {
    const ApplicationSystem system(
        "<script>const keys = new Set;\n"
        "addEventListener('keydown', ({keyCode}) => { document.title = [...keys.add(keyCode)]; });</script>");
    ASSERT_TRUE(system.ready);
    Display display;
    ASSERT_TRUE(display.Started());
    std::vector<std::string> command = system.Command();
    command.erase(std::find(command.begin(), command.end(), "--headless"));
    ChildProcess browser(command, {display.Variable()});
    ASSERT_TRUE(ApplicationSystem::OpenArte()) << browser.Output();
    EXPECT_TRUE(WaitFor([&] {
        display.ClickRed();
        return ApplicationSystem::Tell("tabs").find("title \"403\"") != std::string::npos;
    })) << ApplicationSystem::Tell("tabs");
    display.Press("F2");
    EXPECT_TRUE(ApplicationSystem::ShowsTab("title \"403,404\"")) << ApplicationSystem::Tell("tabs");
    browser.Signal(SIGINT);
    EXPECT_EQ(browser.WaitForExit(), kDone);
}

TEST(Screen, RunsAProgramForTheKeysOfItsRemoteControlInsteadIfOneIsGiven) {
    const ApplicationSystem system(
        "<script>addEventListener('keydown', ({keyCode}) => { document.title = 'key ' + keyCode; });</script>");
    ASSERT_TRUE(system.ready);
    const std::string keys = system.directory / "keys";
    const std::string program = system.Write("remote", "#!/bin/sh\necho \"$1\" >>" + keys + "\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    Display display;
    ASSERT_TRUE(display.Started());
    std::vector<std::string> command = system.Command();
    std::replace(command.begin(), command.end(), std::string("--headless"), "--remote=" + program);
    ChildProcess browser(command, {display.Variable()});
    ASSERT_TRUE(ApplicationSystem::OpenArte()) << browser.Output();
    EXPECT_TRUE(WaitFor([&] {
        display.ClickRed();
        return ReadAll(keys).find("RED\n") != std::string::npos;
    })) << browser.Output();
    display.Press("Prior");
    EXPECT_TRUE(WaitFor([&] { return ReadAll(keys).find("P+\n") != std::string::npos; })) << ReadAll(keys);
    EXPECT_TRUE(ApplicationSystem::ShowsTab("title \"arte\"")) << ApplicationSystem::Tell("tabs");
    browser.Signal(SIGINT);
    EXPECT_EQ(browser.WaitForExit(), kDone);
}

TEST(Screen, SaysThatADisplayCannotBeUsed) {
    const BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const FinishedRun run = RunToEnd({HBBTV_BROWSER_PROGRAM}, std::nullopt, {"DISPLAY=:nowhere"});
    EXPECT_EQ(run.exit, kUnavailable);
    EXPECT_EQ(run.errors.find("hbbtv-browser: cannot open a window: "), 0u) << run.Text();
}

TEST(Screen, ReportsAPictureThatCannotBeWritten) {
    const BrowserSystem system;
    ASSERT_TRUE(system.ready);
    const std::string page = system.Write("page.html", Application(""));
    const FinishedRun run = BrowserSystem::Run({page, "--screenshot", "/dev/full/picture.png"});
    EXPECT_EQ(run.exit, kUsage);
    EXPECT_EQ(run.errors, "hbbtv-browser: cannot write \"/dev/full/picture.png\": Not a directory\n");
}

}  // namespace hbbtv::test
