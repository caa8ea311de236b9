#include "platform/holdings.h"

#include <algorithm>
#include <array>

#include "package/description.h"

namespace hbbtv::browser {

namespace {

struct Rule {
    const char* interface;  // of the method that returns the handle; "" for any
    const char* method;     // "" for any
    const char* result;
    const char* releaser;
};

// Channels are not here: all pages get the same handle for a channel.
constexpr std::array<Rule, 15> kRules{{
    {"IVideoBroadcast", "Create", "vb", "IVideoBroadcast.Destroy"},
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
    {"", "", "programme", "IProgramme.Release"},
    {"", "", "component", "IAVComponent.Release"},
}};

bool Fits(const char* wanted, const std::string& name) {
    return *wanted == '\0' || name == wanted;
}

// The name of the releaser's only argument.
std::string ArgumentOf(const std::string& releaser) {
    return Package::Get().FindMethod(releaser).method->arguments.at(0).name;
}

bool IsReleaser(const std::string& method) {
    return std::any_of(kRules.begin(), kRules.end(), [&](const Rule& rule) { return method == rule.releaser; });
}

const char* ReleaserOf(const std::string& interface, const std::string& method, const std::string& result) {
    for (const Rule& rule : kRules) {
        if (Fits(rule.interface, interface) && Fits(rule.method, method) && result == rule.result) return rule.releaser;
    }
    return nullptr;
}

}  // namespace

void Holdings::Called(const std::string& document, const std::string& method, const Json::Value& arguments,
                      const Json::Value& results) {
    std::vector<Object>& held = mHeld[document];
    if (IsReleaser(method)) {
        const Object released{method, arguments[ArgumentOf(method)].asInt64()};
        held.erase(std::remove(held.begin(), held.end(), released), held.end());
        return;
    }
    const size_t dot = method.find('.');
    for (const std::string& name : results.getMemberNames()) {
        const char* releaser = ReleaserOf(method.substr(0, dot), method.substr(dot + 1), name);
        if (releaser == nullptr || !results[name].isIntegral() || results[name].asInt64() == 0) continue;
        const Object object{releaser, results[name].asInt64()};
        if (std::find(held.begin(), held.end(), object) == held.end()) held.push_back(object);
    }
}

std::vector<Release> Holdings::Gone(const std::string& document) {
    const auto found = mHeld.find(document);
    if (found == mHeld.end()) return {};
    std::vector<Object> held = std::move(found->second);
    mHeld.erase(found);
    std::vector<Release> releases;
    // The last one first: a search before its manager.
    for (auto object = held.rbegin(); object != held.rend(); ++object) {
        if (Held(object->first).count(object->second) != 0) continue;
        Json::Value arguments;
        arguments[ArgumentOf(object->first)] = static_cast<Json::Int64>(object->second);
        releases.emplace_back(object->first, arguments);
    }
    return releases;
}

std::vector<std::string> Holdings::Documents() const {
    std::vector<std::string> documents;
    for (const auto& document : mHeld) documents.push_back(document.first);
    return documents;
}

std::set<int64_t> Holdings::Held(const std::string& releaser) const {
    std::set<int64_t> handles;
    for (const auto& document : mHeld) {
        for (const Object& object : document.second) {
            if (object.first == releaser) handles.insert(object.second);
        }
    }
    return handles;
}

}  // namespace hbbtv::browser
