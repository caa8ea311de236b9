#include "ApplicationManager.h"

#include <cstring>
#include <map>
#include <mutex>
#include <tuple>
#include <utility>
#include <vector>

#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_registered_client.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmApmAdaptorIpc;
using ::android::hidl::base::V1_0::IBase;

namespace {

const std::pair<::TolmAIPEvent, TolmAIPEventCallback> kFunctions[] = {
    {TOLM_AIP_EVENT_APPLICATION_1, ToAIPEventCallback(onApplicationEventCallback)},
    {TOLM_AIP_EVENT_APPLICATION_2, ToAIPEventCallback(onApplicationEventCallback)},
    {TOLM_AIP_EVENT_APPLICATION_3, ToAIPEventCallback(onApplicationEventCallback)},
    {TOLM_AIP_EVENT_GET_LOCAL_PARENTAL_RATING, ToAIPEventCallback(onGetLocalParantalRating)},
    {TOLM_AIP_EVENT_APPLICATION_TOP_MOST, ToAIPEventCallback(onApplicationTopMost)},
    {TOLM_AIP_EVENT_APPLICATION_NO_TOP_MOST, ToAIPEventCallback(onApplicationNoTopMost)},
    {TOLM_AIP_EVENT_APPLICATION_DESTROY_REQUEST, ToAIPEventCallback(onApplicationDestroyRequest)},
    {TOLM_AIP_EVENT_KEY_PRESS, ToAIPEventCallback(onKeyPress)},
    {TOLM_AIP_EVENT_KEY_UP, ToAIPEventCallback(onKeyUp)},
    {TOLM_AIP_EVENT_KEY_DOWN, ToAIPEventCallback(onKeyDown)},
    {TOLM_AIP_EVENT_IS_PARENTAL_RATING_BLOCKED, ToAIPEventCallback(onIsParentalratingBlocked)},
    {TOLM_AIP_EVENT_REQUEST_DSMCC_FILE, ToAIPEventCallback(onRequestDsmccFile)},
    {TOLM_AIP_EVENT_RELEASE_DSMCC_FILE, ToAIPEventCallback(onReleaseDsmccFile)},
    {TOLM_AIP_EVENT_IS_OBJECT_SUPPORTED, ToAIPEventCallback(onIsObjectSupported)},
    {TOLM_AIP_EVENT_HANDLE_BROADCAST_SERVICE, ToAIPEventCallback(onHandleBroadcastService)},
    {TOLM_AIP_EVENT_GET_CONFIGURATION, ToAIPEventCallback(onGetConfiguration)},
    {TOLM_AIP_EVENT_PLATFORM_INITIALIZE, ToAIPEventCallback(onPlatformInitialize)},
    {TOLM_AIP_EVENT_PLATFORM_FINALIZE, ToAIPEventCallback(onPlatformFinalize)},
    {TOLM_AIP_EVENT_SET_BROADCAST_FULL_SCREEN, ToAIPEventCallback(onSetBroadcastFullScreen)},
    {TOLM_AIP_EVENT_OPAPP_STATE_CHANGE, ToAIPEventCallback(onOpappStateChange)},
    {TOLM_AIP_EVENT_OPAPP_CONTEXT_CHANGE, ToAIPEventCallback(onOpappContextChange)},
    {TOLM_AIP_EVENT_OPAPP_UPDATE, ToAIPEventCallback(onOpappUpdate)},
};

// Returns an event's function, or null.
TolmAIPEventCallback FunctionOf(::TolmAIPEvent event) {
    for (const auto& [known, function] : kFunctions) {
        if (known == event) return function;
    }
    return nullptr;
}

// One client per event. The clients, the watch over their processes and the adaptor's functions change together.
// Thread-safe.
class RegisteredClients : public TolmServiceInstances {
  public:
    using Client = sp<IAIPEventCallback>;

    // Returns the event's client; null if there is none, no service exists or the client-gone flag is set. Never waits
    // for a registration, so events may call it.
    Client GetLiving(::TolmAIPEvent event) const {
        const Client client = Get(event);
        return client != nullptr && HasClient() ? client : nullptr;
    }

    // Registers an event's client and returns the adaptor's status, or -1 if the event has a client. An event without a
    // function is refused as well, but keeps its client until it is unregistered.
    int Register(const TolmServiceMethod& service, ::TolmAIPEvent event, const Client& client, void* context) {
        if (Adaptor::GetInstance() == nullptr || !service.Accepts(client)) return -1;
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return -1;
        if (!Add(event, client)) return -1;
        service->StartMonitor(client);
        const TolmAIPEventCallback function = FunctionOf(event);
        if (function == nullptr) return -1;
        return TolmCallAdaptor(&Adaptor::RegisterAIPEventCallback, event, function, context);
    }

    // Ends an event's registration. The client-gone flag is that of all events, so it silences them all until one is
    // registered again.
    int Unregister(const TolmServiceMethod& service, ::TolmAIPEvent event, void* context) {
        if (Adaptor::GetInstance() == nullptr) return -1;
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return -1;
        if (const Client client = Get(event)) {
            service->StopMonitor(client);
            Remove(event);
        }
        return TolmCallAdaptor(&Adaptor::UnRegisterAIPEventCallback, event, context);
    }

    // Drops the clients of all events, dead or alive. They are no longer watched, so their deaths have no effect on
    // clients that register from now on.
    void OnDied(const TolmServiceMethod& service, const wp<IBase>& who) {
        service.LogDeath();
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) {
            RemoveAll();  // without the platform, which does not reply
            return;
        }
        service->StopMonitor(who.promote());
        TolmCallAdaptor(&Adaptor::ClearAPIEventCallback);
        for (const auto& [event, client] : RemoveAll()) service->Forget(client);
    }

  private:
    // Returns whether the event had no client.
    bool Add(::TolmAIPEvent event, const Client& client) {
        std::lock_guard<std::mutex> lock(mMutex);
        return mClients.emplace(event, client).second;
    }

    // Returns the event's client, or null.
    Client Get(::TolmAIPEvent event) const {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto client = mClients.find(event);
        return client == mClients.end() ? nullptr : client->second;
    }

    void Remove(::TolmAIPEvent event) {
        std::lock_guard<std::mutex> lock(mMutex);
        mClients.erase(event);
    }

    // Returns the clients that were registered.
    std::map<::TolmAIPEvent, Client> RemoveAll() {
        std::lock_guard<std::mutex> lock(mMutex);
        return std::exchange(mClients, {});
    }

    // A turn is while the clients, the watch and the adaptor's functions change, for which the platform may be called;
    // events need none.
    tolm::CallerQueue mRegistering{IAIPEventCallback::descriptor, tolm::ReplyTimeout()};

    mutable std::mutex mMutex;
    std::map<::TolmAIPEvent, Client> mClients;  // guarded by mMutex
};

RegisteredClients mApmCallback;

}  // namespace

ApplicationManager::ApplicationManager()
    : TolmHidlClientMonitor(tolm::kApplicationManagerTag, mApmCallback, tolm::families::kApplicationManager) {}

Return<void> ApplicationManager::GetOwnerApp(int32_t appId, int32_t orgId, GetOwnerApp_cb _hidl_cb) {
    return AnswerFrom(std::tuple(appId, orgId), _hidl_cb, &Adaptor::GetOwnerApp);
}

Return<void> ApplicationManager::GetCurrentApp(GetCurrentApp_cb _hidl_cb) {
    return AnswerFrom(std::tuple(-1, -1), _hidl_cb, &Adaptor::GetCurrentApp);
}

Return<void> ApplicationManager::GetChildApps(int32_t appId, int32_t orgId, GetChildApps_cb _hidl_cb) {
    return AnswerBy<Adaptor>(_hidl_cb, [&](Adaptor& adaptor, hidl_vec<int32_t>& appIds, hidl_vec<int32_t>& orgIds) {
        std::vector<std::pair<int, int>> apps;
        const int status = adaptor.GetChildApps(appId, orgId, apps);
        appIds.resize(apps.size());
        orgIds.resize(apps.size());
        for (size_t i = 0; i < apps.size(); ++i) std::tie(appIds[i], orgIds[i]) = apps[i];
        return status;
    });
}

Return<void> ApplicationManager::CreateApplication(int32_t appId, int32_t orgId, const hidl_string& url, bool child,
                                                   bool opapp, CreateApplication_cb _hidl_cb) {
    return AnswerFrom(std::tuple(-1, -1), _hidl_cb, &Adaptor::CreateApp, appId, orgId, url.c_str(), child, opapp);
}

Return<int32_t> ApplicationManager::DestroyApplication(int32_t appId, int32_t orgId) {
    return Status(&Adaptor::DestroyApp, appId, orgId);
}

Return<int32_t> ApplicationManager::Show(int32_t appId, int32_t orgId) {
    return Status(&Adaptor::ShowApp, appId, orgId);
}

Return<int32_t> ApplicationManager::Hide(int32_t appId, int32_t orgId) {
    return Status(&Adaptor::HideApp, appId, orgId);
}

Return<void> ApplicationManager::GetValue(int32_t appId, int32_t orgId, GetValue_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetValue, appId, orgId);
}

Return<void> ApplicationManager::GetOtherKeys(int32_t appId, int32_t orgId, GetOtherKeys_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetOtherKeys, appId, orgId);
}

Return<void> ApplicationManager::GetMaxiMumValue(int32_t appId, int32_t orgId, GetMaxiMumValue_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetMaxiMumValue, appId, orgId);
}

Return<void> ApplicationManager::GetMaxiMumOtherKeys(int32_t appId, int32_t orgId, GetMaxiMumOtherKeys_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetMaxiMumOtherKeys, appId, orgId);
}

Return<int32_t> ApplicationManager::SetValue(int32_t appId, int32_t orgId, int32_t value,
                                             const hidl_vec<int32_t>& otherKeys) {
    return Status(&Adaptor::SetValue, appId, orgId, value, otherKeys);
}

Return<void> ApplicationManager::GetKeyIcon(int32_t appId, int32_t orgId, int32_t code, GetKeyIcon_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetKeyIcon, appId, orgId, code);
}

Return<void> ApplicationManager::GetKeyLabel(int32_t appId, int32_t orgId, int32_t code, GetKeyLabel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetKeyLabel, appId, orgId, code);
}

Return<void> ApplicationManager::GetVBResouceAllowed(int32_t tabId, GetVBResouceAllowed_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetVBResouceAllowed, tabId);
}

Return<int32_t> ApplicationManager::SetBRAppToBI(int32_t tabId) {
    return Status(&Adaptor::SetBRAppToBI, tabId);
}

Return<int32_t> ApplicationManager::SetBIAppToBR(int32_t tabId) {
    return Status(&Adaptor::SetBIAppToBR, tabId);
}

Return<void> ApplicationManager::KeyConsumedByBrowser(int32_t tabId, int32_t keyCode,
                                                      KeyConsumedByBrowser_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::KeyConsumedByBrowser, tabId, keyCode);
}

Return<int32_t> ApplicationManager::NotifyDSMCCResponseToAPM(const hidl_string& url, const hidl_string& path) {
    return Status(&Adaptor::NotifyDSMCCResponseToAPM, url, path);
}

Return<void> ApplicationManager::GetAppType(int32_t tabId, GetAppType_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAppType, tabId);
}

Return<int32_t> ApplicationManager::SetDeviceResolution(uint32_t width, uint32_t height) {
    return Status(&Adaptor::SetDeviceResolution, width, height);
}

Return<int32_t> ApplicationManager::RegisterCallback(V1_0::TolmAIPEvent event, const sp<IAIPEventCallback>& callback,
                                                     int64_t context) {
    return mApmCallback.Register(this, static_cast<::TolmAIPEvent>(event), callback, Handle(context));
}

Return<int32_t> ApplicationManager::UnregisterCallback(V1_0::TolmAIPEvent event, int64_t context) {
    return mApmCallback.Unregister(this, static_cast<::TolmAIPEvent>(event), Handle(context));
}

void ApplicationManager::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    mApmCallback.OnDied(this, who);
}

namespace {

hidl_string Text(const char* text) {
    hidl_string result;
    if (text != nullptr) result.setToExternal(text, strlen(text));
    return result;
}

// An event, and the function that forwards it, for the log line. A bare event converts to it.
struct Forwarded {
    Forwarded(::TolmAIPEvent theEvent, const char* theFunction = __builtin_FUNCTION())
        : event(theEvent), function(theFunction) {}

    ::TolmAIPEvent event;
    const char* function;
};

// Calls the client of an event.
template <typename... Parameters, typename... Arguments>
void Forward(const Forwarded& forwarded, Return<void> (IAIPEventCallback::*method)(Parameters...),
             const Arguments&... arguments) {
    const sp<IAIPEventCallback> client = mApmCallback.GetLiving(forwarded.event);
    if (client == nullptr) return;
    tolm::Received(((*client).*method)(arguments...), tolm::kApplicationManagerTag, forwarded.function);
}

}  // namespace

void onApplicationEventCallback(const ::TolmAIPEvent& event, const ::TolmAIPEventInfo& info, const void* context) {
    V1_0::TolmAIPEventInfo application{};
    if (event == TOLM_AIP_EVENT_APPLICATION_1) application = {info.appId, info.orgId};
    Forward(event, &IAIPEventCallback::onApplicationEvent, static_cast<V1_0::TolmAIPEvent>(event), application,
            ToHandle(context));
}

void onApplicationTopMost(int appId, int orgId, const void* context) {
    Forward(TOLM_AIP_EVENT_APPLICATION_TOP_MOST, &IAIPEventCallback::onApplicationTopMost, appId, orgId,
            ToHandle(context));
}

void onApplicationNoTopMost(int appId, int orgId, const void* context) {
    Forward(TOLM_AIP_EVENT_APPLICATION_NO_TOP_MOST, &IAIPEventCallback::onApplicationNoTopMost, appId, orgId,
            ToHandle(context));
}

void onApplicationDestroyRequest(int appId, int orgId, const void* context) {
    Forward(TOLM_AIP_EVENT_APPLICATION_DESTROY_REQUEST, &IAIPEventCallback::onApplicationDestroyRequest, appId, orgId,
            ToHandle(context));
}

void onKeyPress(int first, int second, const void* context) {
    Forward(TOLM_AIP_EVENT_KEY_PRESS, &IAIPEventCallback::onKeyPress, first, second, ToHandle(context));
}

void onKeyUp(int first, int second, const void* context) {
    Forward(TOLM_AIP_EVENT_KEY_UP, &IAIPEventCallback::onKeyUp, first, second, ToHandle(context));
}

void onKeyDown(int first, int second, const void* context) {
    Forward(TOLM_AIP_EVENT_KEY_DOWN, &IAIPEventCallback::onKeyDown, first, second, ToHandle(context));
}

void onIsParentalratingBlocked(int first, int second, bool* blocked) {
    Forward(TOLM_AIP_EVENT_IS_PARENTAL_RATING_BLOCKED, &IAIPEventCallback::onIsParentalratingBlocked, first, second,
            *blocked);
}

void onRequestDsmccFile(const char* fileName, const void* context) {
    Forward(TOLM_AIP_EVENT_REQUEST_DSMCC_FILE, &IAIPEventCallback::onRequestDsmccFile, Text(fileName),
            ToHandle(context));
}

void onReleaseDsmccFile(const char* fileName, const void* context) {
    Forward(TOLM_AIP_EVENT_RELEASE_DSMCC_FILE, &IAIPEventCallback::onReleaseDsmccFile, Text(fileName),
            ToHandle(context));
}

void onIsObjectSupported(const char* objectType, bool* supported) {
    Forward(TOLM_AIP_EVENT_IS_OBJECT_SUPPORTED, &IAIPEventCallback::onIsObjectSupported, Text(objectType), *supported);
}

void onGetConfiguration() {
    Forward(TOLM_AIP_EVENT_GET_CONFIGURATION, &IAIPEventCallback::onGetConfiguration);
}

void onPlatformInitialize() {
    Forward(TOLM_AIP_EVENT_PLATFORM_INITIALIZE, &IAIPEventCallback::onPlatformInitialize);
}

void onPlatformFinalize() {
    Forward(TOLM_AIP_EVENT_PLATFORM_FINALIZE, &IAIPEventCallback::onPlatformFinalize);
}

void onHandleBroadcastService(bool enabled) {
    Forward(TOLM_AIP_EVENT_HANDLE_BROADCAST_SERVICE, &IAIPEventCallback::onHandleBroadcastService, enabled);
}

void onSetBroadcastFullScreen(bool fullScreen) {
    Forward(TOLM_AIP_EVENT_SET_BROADCAST_FULL_SCREEN, &IAIPEventCallback::onSetBroadcastFullScreen, fullScreen);
}

void onOpappStateChange(int first, int second, const char* text1, const char* text2, const char* text3) {
    Forward(TOLM_AIP_EVENT_OPAPP_STATE_CHANGE, &IAIPEventCallback::onOpappStateChange, first, second, Text(text1),
            Text(text2), Text(text3));
}

void onOpappContextChange(int first, int second, const char* text1, const char* text2, const char* text3) {
    Forward(TOLM_AIP_EVENT_OPAPP_CONTEXT_CHANGE, &IAIPEventCallback::onOpappContextChange, first, second, Text(text1),
            Text(text2), Text(text3));
}

void onOpappUpdate(int first, int second, const char* text) {
    Forward(TOLM_AIP_EVENT_OPAPP_UPDATE, &IAIPEventCallback::onOpappUpdate, first, second, Text(text));
}

void onGetLocalParantalRating(const char* countryCode, int32_t* rating) {
    Forward(TOLM_AIP_EVENT_GET_LOCAL_PARENTAL_RATING, &IAIPEventCallback::onGetLocalParantalRating, Text(countryCode),
            *rating);
}

IApplicationManager* HIDL_FETCH_IApplicationManager(const char*) {
    return new ApplicationManager();
}

}  // namespace vantorel::hardware::hbbtv::implementation
