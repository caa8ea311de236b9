#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kSearchManager.tag;

}  // namespace

TolmSearchManagerAdaptor::TolmSearchManagerAdaptor()
    : TolmAdaptorClient(families::kSearchManager),
      TolmBaseServer(*families::kSearchManager.events, families::kSearchManager.port) {
    Start();
}

TolmSearchManagerAdaptor::~TolmSearchManagerAdaptor() {
    TolmBaseServer::Stop();
}

int TolmSearchManagerAdaptor::SearchManager_Create(void*& manager) {
    return Call(1, {}, {ToPointer("out_handle", manager)});
}

int TolmSearchManagerAdaptor::SearchManager_Destroy(const void* manager) {
    return Call(3, {Pointer("in_handle", manager)});
}

int TolmSearchManagerAdaptor::SearchManager_RegisterCallback(const void* manager,
                                                             TolmSearchManagerEventCallback callback,
                                                             const void* context) {
    mCallback.Set(callback, context);
    return Call(4, {Pointer("in_handle", manager), Pointer("context", context)});
}

int TolmSearchManagerAdaptor::SearchManager_CreateSearch(const void* manager, unsigned target, void*& search) {
    return Call(5, {Pointer("in_handle", manager), UInt("target", target)}, {ToPointer("out_handle", search)});
}

int TolmSearchManagerAdaptor::SearchManager_DestroySearch(const void* search) {
    return Call(7, {Pointer("in_handle", search)});
}

int TolmSearchManagerAdaptor::MetaSearch_CreateQuery(const void* search, const std::string& field, int comparison,
                                                     const std::string& value, void*& query) {
    return Call(8, {Pointer("in_handle", search), Text("field", field), Int("comp", comparison), Text("value", value)},
                {ToPointer("out_handle", query)});
}

int TolmSearchManagerAdaptor::MetaSearch_GetResult(const void* search, void*& results) {
    return Call(10, {Pointer("in_handle", search)}, {ToPointer("out_handle", results)});
}

int TolmSearchManagerAdaptor::MetaSearch_GetSearchTarget(const void* search, unsigned& target) {
    return Call(12, {Pointer("in_handle", search)}, {ToUInt("target", target)});
}

int TolmSearchManagerAdaptor::MetaSearch_SetQuery(const void* search, const void* query) {
    return Call(14, {Pointer("search_handle", search), Pointer("query_handle", query)});
}

// The time is a real number on the wire.
int TolmSearchManagerAdaptor::MetaSearch_FindProgrammesFromStream(const void* search, const void* channel,
                                                                  uint32_t startTime, int count) {
    return Call(15, {Pointer("search_handle", search), Pointer("channel_handle", channel),
                     Real("time", static_cast<double>(startTime)), Int("count", count)});
}

int TolmSearchManagerAdaptor::MetaSearch_AddChannelConstraint(const void* search, const void* channel) {
    return Call(16, {Pointer("search_handle", search), Pointer("channel_handle", channel)});
}

int TolmSearchManagerAdaptor::SearchResults_Release(const void* results) {
    return Call(17, {Pointer("in_handle", results)});
}

int TolmSearchManagerAdaptor::SearchResults_GetOffset(const void* results, unsigned& offset) {
    return Call(18, {Pointer("in_handle", results)}, {ToUInt("offset", offset)});
}

int TolmSearchManagerAdaptor::SearchResults_GetLength(const void* results, unsigned& length) {
    return Call(20, {Pointer("in_handle", results)}, {ToUInt("length", length)});
}

int TolmSearchManagerAdaptor::SearchResults_GetTotalSize(const void* results, unsigned& size) {
    return Call(22, {Pointer("in_handle", results)}, {ToUInt("size", size)});
}

int TolmSearchManagerAdaptor::SearchResults_GetProgramme(const void* results, unsigned index, void*& programme) {
    return Call(24, {Pointer("in_handle", results), UInt("index", index)}, {ToPointer("out_handle", programme)});
}

int TolmSearchManagerAdaptor::SearchResults_GetResults(const void* results, unsigned offset, unsigned count) {
    return Call(26, {Pointer("in_handle", results), UInt("offset", offset), UInt("count", count)});
}

int TolmSearchManagerAdaptor::SearchResults_Abort(const void* results) {
    return Call(27, {Pointer("in_handle", results)});
}

int TolmSearchManagerAdaptor::Query_Release(const void* query) {
    return Call(28, {Pointer("in_handle", query)});
}

int TolmSearchManagerAdaptor::Query_And(const void* first, const void* second, void*& query) {
    return Call(29, {Pointer("in_handle1", first), Pointer("in_handle2", second)}, {ToPointer("out_handle", query)});
}

int TolmSearchManagerAdaptor::Query_Or(const void* first, const void* second, void*& query) {
    return Call(31, {Pointer("in_handle1", first), Pointer("in_handle2", second)}, {ToPointer("out_handle", query)});
}

int TolmSearchManagerAdaptor::Query_Not(const void* query, void*& negated) {
    return Call(33, {Pointer("in_handle", query)}, {ToPointer("out_handle", negated)});
}

void TolmSearchManagerAdaptor::ReceiveIpc(const Json::Value& msg) {
    LogScope scope(kTag);
    const TolmSearchManagerEvent event = ReadInt(msg, "event");
    TolmSearchManagerEventInfo info{};
    if (event == 0) {
        // An event without a handle leaves it null.
        Read(msg, {ToInt("state", info.state), ToPointer("searchHandle", info.searchHandle)});
    } else {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event type %d", event);
    }
    const auto receiver = mCallback.Get();
    if (receiver.function != nullptr) receiver.function(event, info, receiver.context);
}

void TolmSearchManagerAdaptor::ReceiveIpc(const Json::Value&, Json::Value&) {
    TOLM_LOG(ANDROID_LOG_ERROR, kTag, "Should not be called here");
}
