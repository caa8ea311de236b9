// What pages get from the platform is released when they end, however that happens.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "application_system.h"

namespace hbbtv::test {

namespace {

using testing::HasSubstr;
using testing::Not;

// Uses each object that has handles. Its title becomes "rated" when an event has brought one more.
constexpr const char* kPage = R"(
<object id="video" type="video/broadcast"></object><script>
const video = document.getElementById('video');
const kept = [];
function use() {
    video.onPlayStateChange = null;
    const config = video.getChannelConfig();
    kept.push(config.channelList[0], config.createFilteredList(false, undefined, false, ''), config.favouriteLists,
        config.currentFavouriteList, config.favouriteLists.createFavouriteList('mine'));
    kept.push(video.createChannelObject(11, 1, 65000, 65000), video.programmes[0].parentalRatings,
        video.getComponents(1)[0]);
    video.addStreamEventListener('dvb://current.ait/events/quiz', 'quiz', () => {});
    const [scheme] = oipfObjectFactory.createParentalControlManagerObject().parentalRatingSchemes;
    const search = oipfObjectFactory.createSearchManagerObject().createSearch(1);
    const query = search.createQuery('Programme.name', 0, 'x');
    kept.push(scheme.threshold, query.not(), query.and(query), search.result.length);
    const media = document.body.appendChild(document.createElement('video'));
    media.addTextTrack('subtitles', 'Deutsch', 'deu');
    media.dispatchEvent(new Event('loadedmetadata'));
    video.onParentalRatingChange = (contentID, ratings) => { document.title = 'rated ' + ratings[0].name; };
    document.title = 'used';
}
video.onPlayStateChange = (state) => { if (state === 2) use(); };
video.bindToCurrentChannel();
addEventListener('keydown', () => { location = 'other.html'; });
</script>)";

// All pages get the same handle for a channel of the television, which the platform keeps.
bool IsOfTheTelevision(const std::string& line) {
    static const std::regex kChannels(
        "> (Item cl_handle|GetCurrentChannel|BindToCurrentChannel|GetBroadcastSupervisor)");
    return std::regex_search(line, kChannels);
}

std::set<std::string> HandlesIn(const std::string& text) {
    static const std::regex kHandle("0x[0-9a-f]{8}");
    return {std::sregex_token_iterator(text.begin(), text.end(), kHandle), std::sregex_token_iterator()};
}

// Returns the lines of a trace that brought handles to the browser that it has not released.
std::string Unreleased(const std::string& trace) {
    static const std::regex kReleases("> [A-Za-z_]*(Release|Destroy)");
    std::map<std::string, std::string> held;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        const bool release = std::regex_search(line, kReleases);
        const size_t brought = line.find("PRCollectionHandle") == std::string::npos ? line.find("| <") : 0;
        for (const std::string& handle : HandlesIn(release ? line : "")) held.erase(handle);
        if (release || brought == std::string::npos || IsOfTheTelevision(line)) continue;
        for (const std::string& handle : HandlesIn(line.substr(brought))) held[handle] = line;
    }
    std::string left;
    for (const auto& each : held) left += each.second + "\n";
    return left;
}

struct End {
    const char* name;
    void (*make)(ChildProcess& browser);
};

void PrintTo(const End& end, std::ostream* out) {
    *out << end.name;
}

const std::vector<End> kEnds{
    {"IsDestroyed", [](ChildProcess&) { BrowserSystem::Tell("stop 14.1"); }},
    {"IsLeft", [](ChildProcess&) { BrowserSystem::Tell("key RED"); }},
    {"Crashes", [](ChildProcess&) { kill(ApplicationSystem::RenderProcess(), SIGKILL); }},
    {"EndsWithTheBrowser", [](ChildProcess& browser) { browser.Signal(SIGINT); }},
};

std::string TestName(const ::testing::TestParamInfo<End>& info) {
    return info.param.name;
}

}  // namespace

class Releases : public ::testing::TestWithParam<End> {};

TEST_P(Releases, OfAllThatAPageHasFollowWhenIt) {
    const ApplicationSystem system(kPage);
    ASSERT_TRUE(system.ready);
    system.Write("arte/other.html", "<!DOCTYPE html><title>other</title>");
    ChildProcess browser(system.Command());
    ASSERT_TRUE(ApplicationSystem::OpenArte()) << browser.Output();
    ASSERT_TRUE(ApplicationSystem::ShowsTab("title \"used\"")) << ApplicationSystem::Tell("tabs");
    EXPECT_THAT(ApplicationSystem::Tell("parental-rating dvb-si 10"), HasSubstr("ok"));
    ASSERT_TRUE(ApplicationSystem::ShowsTab("title \"rated")) << ApplicationSystem::Tell("tabs");
    ASSERT_TRUE(ApplicationSystem::ShowsTab("render process "));
    EXPECT_GT(HandlesIn(Unreleased(system.platform.Output())).size(), 15u);

    GetParam().make(browser);
    EXPECT_TRUE(WaitFor([&] { return Unreleased(system.platform.Output()).empty(); }))
        << Unreleased(system.platform.Output());
    EXPECT_TRUE(system.platform.WaitForOutput("> RemoveStreamEventListener dvburl=\"dvb://current.ait/events/quiz\""));
    EXPECT_TRUE(system.platform.WaitForOutput("> ComponentUpdate component_count=0 component_type=2"));
    EXPECT_THAT(system.platform.Output(), Not(HasSubstr("refused")));
}

INSTANTIATE_TEST_SUITE_P(Page, Releases, ::testing::ValuesIn(kEnds), TestName);

TEST(ReleasesOfListeners, LeaveOutThoseThatThePlatformHasEnded) {
    const ApplicationSystem system(kPage);
    ASSERT_TRUE(system.ready);
    ChildProcess browser(system.Command());
    ASSERT_TRUE(ApplicationSystem::OpenArte()) << browser.Output();
    ASSERT_TRUE(ApplicationSystem::ShowsTab("title \"used\"")) << ApplicationSystem::Tell("tabs");
    ApplicationSystem::Tell("zap 1");
    EXPECT_TRUE(WaitFor([&] { return Unreleased(system.platform.Output()).empty(); }))
        << Unreleased(system.platform.Output());
    EXPECT_THAT(system.platform.Output(), Not(HasSubstr("> RemoveStreamEventListener")));
}

}  // namespace hbbtv::test
