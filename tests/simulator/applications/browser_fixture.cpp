#include "applications/browser_fixture.h"

#include "wait_for.h"

namespace hbbtv::test {

namespace {

std::string Channel(int number, const std::string& name, const std::string& applications,
                    const std::string& more = "") {
    const std::string text = std::to_string(number);
    return R"({"name": ")" + name + R"(", "network": "sat", "onid": 1, "tsid": 1, "sid": )" + text +
           R"(, "type": "TV", "number": )" + text + more +
           R"(, "components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "MPEG2_SD_25"}],)" +
           R"("applications": [)" + applications + "]}";
}

std::string LineUp() {
    return R"({"networks": [{"id": "sat", "name": "Satellite", "delivery": "DVB_S", "nid": 1}], "services": [)" +
           Channel(1, "Plain", "") + "," +
           Channel(2, "Red",
                   R"({"name": "Start", "organisation": 17, "application": 1, "control": "autostart",
                       "url": "http://red.test/", "boundaries": ["http://red.test/", "https://red.test/"]},
                      {"name": "Text", "organisation": 17, "application": 2, "control": "present",
                       "url": "http://red.test/text?a=b", "keySets": ["NUMERIC"], "otherKeys": ["TELETEXT"]})") +
           "," +
           Channel(3, "Free",
                   R"({"name": "Library", "organisation": 18, "application": 501, "control": "autostart",
                       "url": "https://free.test/", "boundToService": false})") +
           "," +
           Channel(4, "Late",
                   R"({"name": "Night", "organisation": 19, "application": 7, "control": "autostart",
                       "url": "http://late.test/", "minimumAge": 16})") +
           "," +
           Channel(5, "Carousel",
                   R"({"name": "Broadcast", "organisation": 20, "application": 1, "control": "autostart",
                       "url": "dvb://1.1.5.17/index.html"})") +
           "," +
           Channel(6, "Xml",
                   R"({"name": "Signalled", "organisation": 21, "application": 1, "control": "autostart",
                       "url": "http://xml.test/ait.aitx"})") +
           "," +
           Channel(7, "Dark",
                   R"({"name": "Unseen", "organisation": 22, "application": 1, "control": "autostart",
                       "url": "http://dark.test/"})",
                   R"(, "reception": "none")") +
           "," +
           Channel(8, "Guarded",
                   R"({"name": "Vault", "organisation": 23, "application": 1, "control": "autostart",
                       "url": "dvb://1.1.8.17/index.html", "minimumAge": 16})") +
           "]}";
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
