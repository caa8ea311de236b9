#include "ipc/src/plugin/tolm_apm_adaptor_ipc.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kApplicationManager.tag;

constexpr size_t kFieldWidth = 16;  // of a number in a string of numbers

// Returns number `index` of a string of fixed-width decimal numbers; 0 if it is missing or invalid.
int FieldOf(const std::string& text, size_t index) {
    if (index >= text.size() / kFieldWidth + 1) return 0;
    const std::string field = text.substr(index * kFieldWidth, kFieldWidth);
    errno = 0;
    const long number = strtol(field.c_str(), nullptr, 10);
    return errno == 0 && number >= INT_MIN && number <= INT_MAX ? static_cast<int>(number) : 0;
}

bool HasContexts(TolmAIPEvent event) {
    return event == TOLM_AIP_EVENT_APPLICATION_1 || event == TOLM_AIP_EVENT_APPLICATION_2 ||
           event == TOLM_AIP_EVENT_APPLICATION_3 || event == TOLM_AIP_EVENT_SET_BROADCAST_FULL_SCREEN;
}

void LogTrace(const Method& method) {
    LogAt(method.place, ANDROID_LOG_WARN, kTag, "TRACE");
}

// Logs an operation that is not sent, and returns -1.
int Refuse(const Method& method) {
    LogScope scope(kTag, method.place);
    LogTrace(method);
    return -1;
}

}  // namespace

TolmApmAdaptorIpc::TolmApmAdaptorIpc()
    : TolmAdaptorClient(families::kApplicationManager),
      TolmBaseServer(*families::kApplicationManager.events, families::kApplicationManager.port) {
    Start();
}

TolmApmAdaptorIpc::~TolmApmAdaptorIpc() {
    TolmBaseServer::Stop();
}

int TolmApmAdaptorIpc::RegisterAIPEventCallback(TolmAIPEvent event, TolmAIPEventCallback callback, void* context) {
    LogScope scope(kTag);
    std::lock_guard<std::mutex> lock(mCallbackMutex);
    mCallbacks.emplace(event, callback);
    if (HasContexts(event)) mContexts[event].push_back(context);
    return 0;
}

int TolmApmAdaptorIpc::UnRegisterAIPEventCallback(TolmAIPEvent event, void* context) {
    LogScope scope(kTag);
    std::lock_guard<std::mutex> lock(mCallbackMutex);
    mCallbacks.erase(event);
    std::vector<void*>& contexts = mContexts[event];
    contexts.erase(std::remove(contexts.begin(), contexts.end(), context), contexts.end());
    if (contexts.empty()) mContexts.erase(event);
    return 0;
}

void TolmApmAdaptorIpc::ClearAPIEventCallback() {
    LogScope scope(kTag);
    std::lock_guard<std::mutex> lock(mCallbackMutex);
    mCallbacks.clear();
    mContexts.clear();
}

// The organisation id is not sent.
int TolmApmAdaptorIpc::GetOwnerApp(int& appId, int& orgId) {
    return Call(201, {Int("appid", appId)}, {ToInt("appid", appId), ToInt("orgid", orgId)});
}

int TolmApmAdaptorIpc::GetCurrentApp(int& appId, int& orgId) {
    return Call(203, {}, {ToInt("appid", appId), ToInt("orgid", orgId)});
}

int TolmApmAdaptorIpc::GetChildApps(int appId, int orgId, std::vector<std::pair<int, int>>& apps) {
    if (appId == -1 && orgId == -1) return Refuse(205);
    int count = 0;
    std::string appIds;
    std::string orgIds;
    const int status = Call(205, {Int("appid", appId), Int("orgid", orgId)},
                            {ToInt("appNum", count), ToText("appidArray", appIds), ToText("orgidArray", orgIds)});
    if (status != 0) return status;
    if (count > kMostNumbered) return -1;
    for (int i = 0; i < count; ++i) apps.emplace_back(FieldOf(appIds, i), FieldOf(orgIds, i));
    return 0;
}

int TolmApmAdaptorIpc::CreateApp(int appId, int orgId, const char* url, bool child, bool opapp, int& newAppId,
                                 int& newOrgId) {
    if (url == nullptr) return Refuse(207);
    return Call(207,
                {Int("appid", appId), Int("orgid", orgId), Text("url", url), Int("child", child ? 1 : 0),
                 Int("opapp", opapp ? 1 : 0)},
                {ToInt("appid", newAppId), ToInt("orgid", newOrgId)});
}

int TolmApmAdaptorIpc::DestroyApp(int appId, int orgId) {
    return Post(209, {Int("appid", appId), Int("orgid", orgId)});
}

int TolmApmAdaptorIpc::ShowApp(int appId, int orgId) {
    return Post(210, {Int("appid", appId), Int("orgid", orgId)});
}

int TolmApmAdaptorIpc::HideApp(int appId, int orgId) {
    return Post(211, {Int("appid", appId), Int("orgid", orgId)});
}

int TolmApmAdaptorIpc::GetValue(int appId, int orgId, int& value) {
    return Call(220, {Int("appid", appId), Int("orgid", orgId)}, {ToInt("value", value)});
}

int TolmApmAdaptorIpc::GetOtherKeys(int appId, int orgId, std::vector<int>& keys) {
    return Call(222, {Int("appid", appId), Int("orgid", orgId)}, {ToNumberedInts("num", keys)});
}

int TolmApmAdaptorIpc::GetMaxiMumValue(int appId, int orgId, int& value) {
    return Call(224, {Int("appid", appId), Int("orgid", orgId)}, {ToInt("maxvalue", value)});
}

int TolmApmAdaptorIpc::GetMaxiMumOtherKeys(int appId, int orgId, std::vector<int>& keys) {
    return Call(226, {Int("appid", appId), Int("orgid", orgId)}, {ToNumberedInts("num", keys)});
}

int TolmApmAdaptorIpc::SetValue(int appId, int orgId, int value, const std::vector<int>& otherKeys) {
    return Post(232, {Int("appid", appId), Int("orgid", orgId), Int("value", value),
                      Int("keynum", static_cast<int>(otherKeys.size())), NumberedInts(otherKeys)});
}

// "pointer" is the platform's key for the icon, which is a string and not a handle.
int TolmApmAdaptorIpc::GetKeyIcon(int appId, int orgId, int code, std::string& icon) {
    return Call(233, {Int("appid", appId), Int("orgid", orgId), Int("code", code)}, {ToText("pointer", icon)});
}

int TolmApmAdaptorIpc::GetKeyLabel(int appId, int orgId, int code, std::string& label) {
    return Call(235, {Int("appid", appId), Int("orgid", orgId), Int("code", code)}, {ToText("label", label)});
}

// "heigth" is the platform's spelling.
int TolmApmAdaptorIpc::SetDeviceResolution(unsigned width, unsigned height) {
    return Post(249, {UInt("width", width), UInt("heigth", height)}, LogTrace);
}

int TolmApmAdaptorIpc::GetVBResouceAllowed(int tabId, bool& allowed) {
    return Call(251, {Int("tabid", tabId)}, {ToFlag("allowed", allowed)});
}

int TolmApmAdaptorIpc::SetBRAppToBI(int tabId) {
    return Post(253, {Int("tabid", tabId)});
}

int TolmApmAdaptorIpc::GetAppType(int tabId, int& appType) {
    return Call(260, {Int("tabid", tabId)}, {ToInt("appType", appType)});
}

int TolmApmAdaptorIpc::SetBIAppToBR(int tabId) {
    return Post(262, {Int("tabid", tabId)});
}

int TolmApmAdaptorIpc::KeyConsumedByBrowser(int tabId, int keyCode, bool& consumed) {
    return Call(263, {Int("tabid", tabId), Int("keyCode", keyCode)}, {ToFlag("consumed", consumed)});
}

int TolmApmAdaptorIpc::NotifyDSMCCResponseToAPM(const std::string& url, const std::string& path) {
    return Post(265, {Text("url", url), Text("path", path)}, LogTrace);
}

TolmApmAdaptorIpc::Registration TolmApmAdaptorIpc::RegistrationOf(TolmAIPEvent event) {
    std::lock_guard<std::mutex> lock(mCallbackMutex);
    const auto callback = mCallbacks.find(event);
    if (callback == mCallbacks.end()) return {};
    const auto contexts = mContexts.find(event);
    return {callback->second, contexts == mContexts.end() ? std::vector<void*>() : contexts->second};
}

// The platform also sends the full-screen state of the broadcast (270), which is ignored.
void TolmApmAdaptorIpc::ReceiveIpc(const Json::Value& msg) {
    if (ReadInt(msg, "t") != 237) return;
    const TolmAIPEvent event = TOLM_AIP_EVENT_APPLICATION_1;
    const Registration receivers = RegistrationOf(event);
    const auto function = reinterpret_cast<TolmAIPApplicationEventFunction>(receivers.callback);
    if (function == nullptr) return;
    TolmAIPEventInfo info;
    Read(msg, {ToInt("appid", info.appId), ToInt("orgid", info.orgId)});
    for (const void* context : receivers.contexts) function(event, info, context);
}

void TolmApmAdaptorIpc::ReceiveIpc(const Json::Value& msg, Json::Value& reply) {
    reply["ret"] = 0;
    if (ReadInt(msg, "t") != 271) return;
    const Registration receiver = RegistrationOf(TOLM_AIP_EVENT_GET_LOCAL_PARENTAL_RATING);
    const auto function = reinterpret_cast<TolmAIPLocalParentalRatingFunction>(receiver.callback);
    if (function == nullptr) {
        reply["ret"] = -1;
        return;
    }
    int32_t rating = 0;
    function(ReadText(msg, "countryCode").c_str(), &rating);
    reply["parentalRating"] = rating;
}
