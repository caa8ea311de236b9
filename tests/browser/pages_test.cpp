// The pages of pages/ in Chromium. Each reports by itself what failed, see pages/check.js.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "common/text/json.h"
#include "system.h"
#include "wait_for.h"

namespace hbbtv::test {

namespace {

namespace fs = std::filesystem;

const fs::path kPages = fs::path(HBBTV_SOURCE_DIR) / "tests/browser/pages";
const fs::path kMembers = fs::path(HBBTV_SOURCE_DIR) / "tools/browser/members.json";

constexpr std::chrono::seconds kPatienceForPage{90};

std::vector<std::string> PageNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kPages)) {
        if (entry.path().extension() == ".html") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string TestName(const ::testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

void WriteManyChannels(const std::string& path) {
    std::ofstream file(path);
    file << "#EXTM3U\n";
    for (int i = 1; i <= 500; ++i) file << "#EXTINF:-1,Channel " << i << "\nhttp://tv.example/" << i << ".mpd\n";
}

// Pages of this name are opened as applications, which the platform knows; the others are alone.
std::vector<std::string> Opening(const std::string& page) {
    if (page.rfind("application-", 0) == 0) return {page + ".html"};
    return {page + ".html", "--alone"};
}

std::vector<std::string> Command(const std::string& folder, const std::string& page, const std::string& picture) {
    std::vector<std::string> command{HBBTV_BROWSER_PROGRAM,
                                     "--serve",
                                     folder,
                                     "--console",
                                     "--timeout",
                                     "60s",
                                     "--until",
                                     "window.__result",
                                     "--print",
                                     "window.__result.failed",
                                     "--screenshot",
                                     picture};
    const std::vector<std::string> opening = Opening(page);
    command.insert(command.begin() + 1, opening.begin(), opening.end());
    return command;
}

// A page in a browser that shows its console.
class PageRun {
  public:
    PageRun(const std::string& folder, const std::string& page, const std::string& picture)
        : mBrowser(Command(folder, page, picture)) {}

    // Sends the page's commands to the platform until the browser has ended. Returns its exit code.
    std::optional<int> FollowToEnd() {
        std::optional<int> exit;
        WaitFor([&] { return (exit = mBrowser.WaitForExit(std::chrono::milliseconds(1))) || !ReadLines(); },
                kPatienceForPage);
        ReadLines();
        return exit;
    }

    // What the page printed besides its commands.
    std::string errors;
    std::string failed;

  private:
    // Returns false if a command was refused.
    bool ReadLines() {
        const std::string text = mBrowser.Output();
        for (size_t end; (end = text.find('\n', mRead)) != std::string::npos; mRead = end + 1) {
            if (!Take(text.substr(mRead, end - mRead))) return false;
        }
        return true;
    }

    bool Take(const std::string& line) {
        const std::string words = line.substr(0, line.find("  ("));
        if (words.rfind(kTell, 0) == 0) {
            const std::string command = words.substr(kTell.size());
            const std::string answer = BrowserSystem::Tell(command);
            return Check(answer.rfind("ok", 0) == 0, command, answer);
        }
        if (words.rfind(kEmit, 0) == 0) {
            const std::string event = words.substr(kEmit.size());
            const FinishedRun run = Emit(event);
            return Check(run.exit == 0, event, run.Text());
        }
        if (line.rfind("[", 0) == 0)
            failed = line;
        else if (line.rfind("info: @", 0) != 0)
            errors += line + "\n";
        return true;
    }

    bool Check(bool done, const std::string& command, const std::string& answer) {
        if (!done) errors += command + ": " + answer;
        return done;
    }

    static FinishedRun Emit(const std::string& event) {
        std::vector<std::string> command{HBBTVCTL_PROGRAM, "emit"};
        std::istringstream words(event);
        for (std::string word; words >> word;) command.push_back(word);
        return RunToEnd(command);
    }

    const std::string kTell = "info: @tell ";
    const std::string kEmit = "info: @emit ";

    ChildProcess mBrowser;
    size_t mRead = 0;
};

// The names of operations on the wire are those of methods but for the case of the first letter.
std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// Returns the operations of the requests in a trace of the platform.
std::set<std::string> Operations(const std::string& trace) {
    std::set<std::string> names;
    std::istringstream lines(trace);
    std::string time, sign, name, rest;
    while (lines >> time >> sign && std::getline(lines, rest)) {
        if (sign == ">" && std::istringstream(rest) >> name) names.insert(Lower(name));
    }
    return names;
}

// Returns the methods, such as IChannel.GetName, that carry read-only properties.
std::vector<std::string> MethodsOfProperties() {
    std::ifstream file(kMembers);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const Json::Value table = ParseJson(text);
    std::vector<std::string> methods;
    for (const Json::Value& object : table["objects"]) {
        for (const Json::Value& member : object["members"]) {
            if (!member["readonly"].asBool()) continue;
            for (const Json::Value& carrier : member["by"]) {
                if (carrier.asString().find("Callback.") == std::string::npos) methods.push_back(carrier.asString());
            }
        }
    }
    return methods;
}

// Where the picture of a page that failed is kept.
fs::path KeptPicture(const std::string& page) {
    return fs::path(HBBTV_BUILD_DIR) / "failed-pages" / (page + ".png");
}

}  // namespace

class Pages : public ::testing::TestWithParam<std::string> {};

TEST_P(Pages, ReportNoFailureAndNoErrorOfTheConsole) {
    const std::string& page = GetParam();
    const ScratchDirectory files;
    WriteManyChannels(files / "many.m3u");
    std::vector<std::string> options{"--stream-event-interval", "100ms"};
    if (page == "many-channels") options.insert(options.end(), {"--line-up", files / "many.m3u"});
    const BrowserSystem system(options);
    ASSERT_TRUE(system.ready);
    fs::copy(kPages, system.directory / "pages", fs::copy_options::recursive);
    fs::copy(kMembers, system.directory / "pages/members.json");

    const std::string picture = system.directory / "picture.png";
    PageRun run(system.directory / "pages", page, picture);
    EXPECT_EQ(run.FollowToEnd(), 0);
    EXPECT_EQ(run.failed, "[]");
    EXPECT_EQ(run.errors, "");

    fs::remove(KeptPicture(page));
    if (HasFailure() && fs::exists(picture)) {
        fs::create_directories(KeptPicture(page).parent_path());
        fs::copy(picture, KeptPicture(page));
        ADD_FAILURE() << "a picture of the page is in " << KeptPicture(page);
    }
}

// The page reads every property, so the platform has been asked for all that properties are carried by.
TEST(MembersOfPages, AreReadByTheMethodsThatTheTableNames) {
    BrowserSystem system({"--trace"});
    ASSERT_TRUE(system.ready);
    fs::copy(kPages, system.directory / "pages", fs::copy_options::recursive);
    fs::copy(kMembers, system.directory / "pages/members.json");
    EXPECT_EQ(PageRun(system.directory / "pages", "members", system.directory / "picture.png").FollowToEnd(), 0);
    const std::set<std::string> asked = Operations(system.platform.Output());
    const std::vector<std::string> methods = MethodsOfProperties();
    EXPECT_GT(methods.size(), 100u);
    for (const std::string& method : methods) {
        EXPECT_TRUE(asked.count(Lower(method.substr(method.find('.') + 1)))) << method << " has not been called";
    }
}

INSTANTIATE_TEST_SUITE_P(All, Pages, ::testing::ValuesIn(PageNames()), TestName);

}  // namespace hbbtv::test
