#include "applications/browser_fixture.h"

#include "wait_for.h"

namespace hbbtv::test {

namespace {

// Returns a service that announces applications.
std::string Announcing(int number, const std::string& name, const std::string& applications) {
    return ServiceText(number, name, R"("applications": [)" + applications + "]");
}

// Returns an application that starts with its service.
std::string Starting(const std::string& name, int organisation, int application, const std::string& url,
                     const std::string& members = "") {
    return R"({"name": ")" + name + R"(", "organisation": )" + std::to_string(organisation) + R"(, "application": )" +
           std::to_string(application) + R"(, "control": "autostart", "url": ")" + url + "\"" +
           (members.empty() ? "" : ", " + members) + "}";
}

std::string LineUp() {
    const std::string age = R"("minimumAge": 16)";
    return LineUpText(
        ServiceText(1, "Plain") + "," +
        Announcing(
            2, "Red",
            Starting("Start", 17, 1, "http://red.test/", R"("boundaries": ["http://red.test/", "https://red.test/"])") +
                R"(, {"name": "Text", "organisation": 17, "application": 2, "control": "present",
                       "url": "http://red.test/text?a=b", "keySets": ["NUMERIC"], "otherKeys": ["TELETEXT"]})") +
        "," + Announcing(3, "Free", Starting("Library", 18, 501, "https://free.test/", R"("boundToService": false)")) +
        "," + Announcing(4, "Late", Starting("Night", 19, 7, "http://late.test/", age)) + "," +
        Announcing(5, "Carousel", Starting("Broadcast", 20, 1, "dvb://1.1.5.17/index.html")) + "," +
        Announcing(6, "Xml", Starting("Signalled", 21, 1, "http://xml.test/ait.aitx")) + "," +
        ServiceText(
            7, "Dark",
            R"("reception": "none", "applications": [)" + Starting("Unseen", 22, 1, "http://dark.test/") + "]") +
        "," + Announcing(8, "Guarded", Starting("Vault", 23, 1, "dvb://1.1.8.17/index.html", age)));
}

std::string Entry(const std::string& table, const std::string& start) {
    const size_t begin = table.find("; " + start);
    if (begin == std::string::npos) return "";
    return table.substr(begin + 2, table.find(';', begin + 2) - begin - 2);
}

}  // namespace

void BrowserFixture::Start(const std::string& ping) {
    mLineUp = LineUp();
    SimulatorFixture::Start({"--ping-interval", ping});
    ServeEvents("application_manager");
    ServeEvents("mtm");
}

std::string BrowserFixture::CreateCommand(const std::string& url, const std::string& boundaries) {
    return "CreateApp appMode=\"hbbtv\" auto_show=true boundaries=[" + boundaries + "] isBr=true url=\"" + url + "\"";
}

void BrowserFixture::AnswerCreateApp(int tab) {
    EXPECT_EQ(NextCommand().rfind("CreateApp ", 0), 0u);
    Reply(R"({"ret": 0, "tabid": )" + std::to_string(tab) + "}");
}

void BrowserFixture::TuneToTab(int channel, int tab) {
    EXPECT_EQ(Tell("zap " + std::to_string(channel)).rfind("ok ", 0), 0u);
    AnswerCreateApp(tab);
    FillTab(tab);
}

void BrowserFixture::FillTab(int tab) {
    std::string command;
    do {
        command = NextCommand();
    } while (command.rfind("GetRenderProcessId ", 0) != 0 && !HasFailure());
    Reply(R"({"ret": 0, "render_id": )" + std::to_string(tab + 1000) + "}");
    EXPECT_TRUE(WaitFor([&] { return TabEntry(tab).find("render process") != std::string::npos; }));
}

std::string BrowserFixture::AppEntry(const std::string& id) {
    return Entry(Tell("apps"), id + " ");
}

std::string BrowserFixture::TabEntry(int tab) {
    return Entry(Tell("tabs"), "tab " + std::to_string(tab) + ":");
}

}  // namespace hbbtv::test
