#include "programme_search.h"

#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>
#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>

#include <condition_variable>
#include <ctime>
#include <mutex>

namespace hbbtv::demo {

namespace {

using android::sp;
using android::hardware::hidl_string;
using android::hardware::Return;
using vantorel::hardware::hbbtv::V1_0::IProgramme;
using vantorel::hardware::hbbtv::V1_0::ISearchManager;
using vantorel::hardware::hbbtv::V1_0::ISearchManagerCallback;
using vantorel::hardware::hbbtv::V1_0::TolmQueryComparisonType;
using vantorel::hardware::hbbtv::V1_0::TolmSearchManagerEventInfo;

constexpr int64_t kContext = 0xf00d;
constexpr uint32_t kScheduledContent = 1;
constexpr uint32_t kShown = 5;
constexpr int32_t kFinished = 0;

class SearchLog : public ISearchManagerCallback {
  public:
    explicit SearchLog(Transcript& transcript) : mTranscript(transcript) {}

    Return<void> OnSearchManagerEvent(int32_t, const TolmSearchManagerEventInfo& info, int64_t) override {
        mTranscript.Event("OnSearchManagerEvent",
                          info.state == kFinished ? "finished" : "state " + std::to_string(info.state));
        const std::lock_guard<std::mutex> lock(mMutex);
        mFinished = info.state == kFinished;
        mCame.notify_all();
        return android::hardware::Void();
    }

    bool WaitForTheEnd() {
        std::unique_lock<std::mutex> lock(mMutex);
        return mCame.wait_for(lock, kPatience, [this] { return mFinished; });
    }

  private:
    Transcript& mTranscript;
    std::mutex mMutex;
    std::condition_variable mCame;
    bool mFinished = false;  // guarded by mMutex
};

std::string When(int32_t start) {
    const std::time_t time = start;
    std::tm parts{};
    char text[32] = "";
    if (gmtime_r(&time, &parts) != nullptr) std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M", &parts);
    return text;
}

class Search {
  public:
    Search(Transcript& transcript, Caller& caller) : mCaller(caller), mLog(new SearchLog(transcript)) {}

    bool Run(const std::string& word) {
        if (mSearches == nullptr || mProgrammes == nullptr) {
            return mCaller.Expect(false, "ISearchManager and IProgramme");
        }
        const bool done = Prepare(word) && Find() && Show();
        return Leave() && done;
    }

  private:
    bool Prepare(const std::string& word) {
        int64_t query = 0;
        const auto made = [](const char* what) { return [what](int64_t) { return std::string(what); }; };
        return mCaller.Get(
                   "SearchManager_Create", [&](auto cb) { return mSearches->SearchManager_Create(cb); },
                   made("a search manager"), mManager) &&
               mCaller.Call("SearchManager_RegisterCallback",
                            [&] { return mSearches->SearchManager_RegisterCallback(mManager, mLog, kContext); }) &&
               mCaller.Get(
                   "SearchManager_CreateSearch(scheduled)",
                   [&](auto cb) { return mSearches->SearchManager_CreateSearch(mManager, kScheduledContent, cb); },
                   made("a search"), mSearch) &&
               mCaller.Get(
                   "MetaSearch_CreateQuery(Programme.name, contains, \"" + word + "\")",
                   [&](auto cb) {
                       return mSearches->MetaSearch_CreateQuery(mSearch, "Programme.name",
                                                                TolmQueryComparisonType::CONTAINS, word, cb);
                   },
                   made("a query"), query) &&
               mCaller.Call("MetaSearch_SetQuery", [&] { return mSearches->MetaSearch_SetQuery(mSearch, query); }) &&
               mCaller.Call("Query_Release", [&] { return mSearches->Query_Release(query); });
    }

    bool Find() {
        uint32_t total = 0;
        return mCaller.Get(
                   "MetaSearch_GetResult", [&](auto cb) { return mSearches->MetaSearch_GetResult(mSearch, cb); },
                   [](int64_t) { return std::string("a result set"); }, mResults) &&
               mCaller.Call("SearchResults_GetResults(0, 5)",
                            [&] { return mSearches->SearchResults_GetResults(mResults, 0, kShown); }) &&
               mCaller.Expect(mLog->WaitForTheEnd(), "the end of the search") &&
               mCaller.Get(
                   "SearchResults_GetTotalSize",
                   [&](auto cb) { return mSearches->SearchResults_GetTotalSize(mResults, cb); },
                   [](uint32_t n) { return std::to_string(n) + " programmes"; }, total) &&
               mCaller.Get(
                   "SearchResults_GetLength", [&](auto cb) { return mSearches->SearchResults_GetLength(mResults, cb); },
                   [](uint32_t n) { return std::to_string(n) + " of them"; }, mLength) &&
               mCaller.Expect(mLength > 0, "a programme with this word in its title");
    }

    bool Show() {
        for (uint32_t i = 0; i < mLength; ++i) {
            int64_t programme = 0;
            int32_t start = 0;
            hidl_string name;
            const bool shown =
                mCaller.Get(
                    "SearchResults_GetProgramme(" + std::to_string(i) + ")",
                    [&](auto cb) { return mSearches->SearchResults_GetProgramme(mResults, i, cb); },
                    [](int64_t) { return std::string("a programme"); }, programme) &&
                mCaller.Get(
                    "GetStartTime", [&](auto cb) { return mProgrammes->GetStartTime(programme, cb); }, When, start) &&
                mCaller.Get(
                    "GetName", [&](auto cb) { return mProgrammes->GetName(programme, cb); },
                    [](const hidl_string& title) { return std::string(title); }, name) &&
                mCaller.Call("Release", [&] { return mProgrammes->Release(programme); });
            if (!shown) return false;
        }
        return true;
    }

    // Also after a failure.
    bool Leave() {
        const bool results = mResults == 0 || mCaller.Call("SearchResults_Release",
                                                           [&] { return mSearches->SearchResults_Release(mResults); });
        const bool search = mSearch == 0 || mCaller.Call("SearchManager_DestroySearch", [&] {
            return mSearches->SearchManager_DestroySearch(mSearch);
        });
        const bool manager = mManager == 0 || mCaller.Call("SearchManager_Destroy",
                                                           [&] { return mSearches->SearchManager_Destroy(mManager); });
        return results && search && manager;
    }

    Caller& mCaller;
    const sp<SearchLog> mLog;
    const sp<ISearchManager> mSearches = ISearchManager::tryGetService();
    const sp<IProgramme> mProgrammes = IProgramme::tryGetService();
    int64_t mManager = 0;
    int64_t mSearch = 0;
    int64_t mResults = 0;
    uint32_t mLength = 0;
};

}  // namespace

bool SearchProgrammes(Transcript& transcript, Caller& caller, const std::string& word) {
    transcript.Step("Find programmes by a word of their title: " + word);
    return Search(transcript, caller).Run(word);
}

}  // namespace hbbtv::demo
