#include "platform/holdings.h"

#include <algorithm>
#include <array>
#include <functional>

#include "common/text/json.h"
#include "package/description.h"

namespace hbbtv::browser {

namespace {

struct Rule {
    const char* interface;  // of the method or event that has the handle; "" for any
    const char* method;     // or event; "" for any
    const char* value;      // the result, or the argument of the event
    const char* releaser;
};

constexpr char kDestroyVideo[] = "IVideoBroadcast.Destroy";
constexpr char kReleaseChannel[] = "IChannel.Release";

constexpr std::array<Rule, 19> kRules{{
    {"IVideoBroadcast", "Create", "vb", kDestroyVideo},
    {"IVideoBroadcast", "CreateChannel_1", "channel", kReleaseChannel},
    {"IVideoBroadcast", "CreateChannel_2", "channel", kReleaseChannel},
    {"IVideoBroadcast", "", "ratings", "IParentalControlManager.ReleaseParentalRatingCollection"},
    {"IChannelConfig", "GetCurrentFavouriteList", "list", "IFavouriteList.Release"},
    {"IChannelConfig", "", "list", "IChannelList.Release"},
    {"IFavouriteListCollection", "", "list", "IFavouriteList.Release"},
    {"IChannelConfig", "", "collection", "IFavouriteListCollection.Release"},
    {"IParentalControlManager", "Create", "manager", "IParentalControlManager.Destroy"},
    {"IParentalControlManager", "", "scheme", "IParentalControlManager.ReleaseParentalRatingScheme"},
    {"IParentalControlManager", "", "rating", "IParentalControlManager.ReleaseParentalRating"},
    {"IProgramme", "", "ratings", "IParentalControlManager.ReleaseParentalRatingCollection"},
    {"ISearchManager", "SearchManager_Create", "manager", "ISearchManager.SearchManager_Destroy"},
    {"ISearchManager", "SearchManager_CreateSearch", "search", "ISearchManager.SearchManager_DestroySearch"},
    {"ISearchManager", "MetaSearch_GetResult", "results", "ISearchManager.SearchResults_Release"},
    {"ISearchManager", "", "query", "ISearchManager.Query_Release"},
    {"ISearchManager", "Query_Not", "negated", "ISearchManager.Query_Release"},
    {"", "", "programme", "IProgramme.Release"},
    {"", "", "component", "IAVComponent.Release"},
}};

const char* const kAddListener = "IVideoBroadcast.AddStreamEventListener";
const char* const kRemoveListener = "IVideoBroadcast.RemoveStreamEventListener";
const char* const kStreamEvent = "IVideoBroadcast.onStreamEvent";
const char* const kReportMedia = "IAVControl.ComponentUpdate";

bool Fits(const char* wanted, const std::string& name) {
    return *wanted == '\0' || name == wanted;
}

// The name of the releaser's only argument.
std::string ArgumentOf(const std::string& releaser) {
    return Package::Get().FindMethod(releaser).method->arguments.at(0).name;
}

const char* ReleaserOf(const std::string& interface, const std::string& method, const std::string& value) {
    for (const Rule& rule : kRules) {
        if (Fits(rule.interface, interface) && Fits(rule.method, method) && value == rule.value) return rule.releaser;
    }
    return nullptr;
}

// The same for numbers of pages and of the platform, which may have different types.
std::string TextOf(const std::string& method, const Json::Value& arguments) {
    return method + WriteJson(arguments);
}

// Returns the report that a document has no media of this kind.
Json::Value WithoutMedia(const Json::Value& type) {
    Json::Value arguments;
    arguments["event"] = 0;
    arguments["type"] = type;
    arguments["components"] = Json::Value(Json::arrayValue);
    arguments["currentIndex"] = -1;
    return arguments;
}

}  // namespace

void Holdings::Called(const std::string& document, const std::string& method, const Json::Value& arguments,
                      const Json::Value& results) {
    Held& held = mHeld[document];
    held.erase(TextOf(method, arguments));
    if (method == kAddListener) Hold(held, kRemoveListener, arguments);
    if (method == kReportMedia && !arguments["components"].empty())
        Hold(held, kReportMedia, WithoutMedia(arguments["type"]));
    Note(held, method, results);
}

std::vector<Release> Holdings::Received(const std::string& event, const Json::Value& arguments) {
    bool taken = false;
    for (auto& [document, held] : mHeld) {
        // After an error no further event comes.
        if (event == kStreamEvent && arguments["status"] == "error") Forget(held, arguments);
        if (!HasVideo(held)) continue;
        Note(held, event, arguments);
        taken = true;
    }
    if (taken) return {};
    const std::string nobody;
    Note(mHeld[nobody], event, arguments);
    return Gone(nobody);
}

void Holdings::Forget(Held& held, const Json::Value& streamEvent) {
    for (auto each = held.begin(); each != held.end();) {
        const auto& [method, arguments] = each->second.release;
        const bool ended = method == kRemoveListener && arguments["strurl"] == streamEvent["url"] &&
                           arguments["eventName"] == streamEvent["eventName"];
        each = ended ? held.erase(each) : std::next(each);
    }
}

bool Holdings::HasVideo(const Held& held) {
    return std::any_of(held.begin(), held.end(),
                       [](const auto& each) { return each.second.release.first == kDestroyVideo; });
}

// Keeps the handles among the values. All pages get the same handle for a channel of the television, so only channels
// that a page has created are released.
void Holdings::Note(Held& held, const std::string& source, const Json::Value& values) {
    const size_t dot = source.find('.');
    for (const std::string& name : values.getMemberNames()) {
        if (!values[name].isIntegral() || values[name].asInt64() == 0) continue;
        const char* releaser = ReleaserOf(source.substr(0, dot), source.substr(dot + 1), name);
        if (releaser == nullptr && (name == "channel" || name == "viewerChannel"))
            mSharedChannels.insert(values[name].asInt64());
        if (releaser == nullptr) continue;
        Json::Value arguments;
        arguments[ArgumentOf(releaser)] = values[name];
        Hold(held, releaser, arguments);
    }
}

void Holdings::Hold(Held& held, const std::string& method, const Json::Value& arguments) {
    held.insert({TextOf(method, arguments), {{method, arguments}, ++mLast}});
}

std::vector<Release> Holdings::Gone(const std::string& document) {
    const auto found = mHeld.find(document);
    if (found == mHeld.end()) return {};
    const Held held = std::move(found->second);
    mHeld.erase(found);
    // The last one first: a search before its manager.
    std::map<size_t, Release, std::greater<>> released;
    for (const auto& [text, holding] : held) {
        if (!IsHeld(text) && !IsShared(holding.release)) released.emplace(holding.order, holding.release);
    }
    std::vector<Release> releases;
    for (const auto& each : released) releases.push_back(each.second);
    return releases;
}

bool Holdings::IsHeld(const std::string& text) const {
    return std::any_of(mHeld.begin(), mHeld.end(),
                       [&](const auto& document) { return document.second.count(text) != 0; });
}

bool Holdings::IsShared(const Release& release) const {
    return release.first == kReleaseChannel && mSharedChannels.count(release.second["channel"].asInt64()) != 0;
}

std::vector<std::string> Holdings::Documents() const {
    std::vector<std::string> documents;
    for (const auto& document : mHeld) documents.push_back(document.first);
    return documents;
}

void Holdings::Clear() {
    mHeld.clear();
    mSharedChannels.clear();
}

}  // namespace hbbtv::browser
