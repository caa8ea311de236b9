// The platform's manager of HbbTV applications: requests to it, its events, and its question for the parental rating.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"
#include "ipc/src/tolm_base_server.h"

// The events that functions are registered for.
using TolmAIPEvent = int32_t;
enum : TolmAIPEvent {
    TOLM_AIP_EVENT_APPLICATION_1 = 1,
    TOLM_AIP_EVENT_APPLICATION_2 = 2,
    TOLM_AIP_EVENT_APPLICATION_3 = 3,
    TOLM_AIP_EVENT_GET_LOCAL_PARENTAL_RATING = 4,
    TOLM_AIP_EVENT_APPLICATION_TOP_MOST = 5,
    TOLM_AIP_EVENT_APPLICATION_NO_TOP_MOST = 6,
    TOLM_AIP_EVENT_APPLICATION_DESTROY_REQUEST = 7,
    TOLM_AIP_EVENT_KEY_PRESS = 8,
    TOLM_AIP_EVENT_KEY_UP = 9,
    TOLM_AIP_EVENT_KEY_DOWN = 10,
    TOLM_AIP_EVENT_IS_PARENTAL_RATING_BLOCKED = 11,
    TOLM_AIP_EVENT_REQUEST_DSMCC_FILE = 18,
    TOLM_AIP_EVENT_RELEASE_DSMCC_FILE = 19,
    TOLM_AIP_EVENT_IS_OBJECT_SUPPORTED = 21,
    TOLM_AIP_EVENT_HANDLE_BROADCAST_SERVICE = 22,
    TOLM_AIP_EVENT_GET_CONFIGURATION = 23,
    TOLM_AIP_EVENT_PLATFORM_INITIALIZE = 24,
    TOLM_AIP_EVENT_PLATFORM_FINALIZE = 25,
    TOLM_AIP_EVENT_SET_BROADCAST_FULL_SCREEN = 26,
    TOLM_AIP_EVENT_OPAPP_STATE_CHANGE = 27,
    TOLM_AIP_EVENT_OPAPP_CONTEXT_CHANGE = 28,
    TOLM_AIP_EVENT_OPAPP_UPDATE = 29,
};

struct TolmAIPEventInfo {
    int32_t appId;
    int32_t orgId;
};

// The function of an event, whatever its parameters are. This adaptor calls those of two events, one at a time, on the
// endpoint's server thread. It only keeps the others.
using TolmAIPEventCallback = void (*)();
using TolmAIPApplicationEventFunction = void (*)(const TolmAIPEvent& event, const TolmAIPEventInfo& info,
                                                 const void* context);                          // of event 1
using TolmAIPLocalParentalRatingFunction = void (*)(const char* countryCode, int32_t* rating);  // of event 4

template <typename... Parameters>
TolmAIPEventCallback ToAIPEventCallback(void (*function)(Parameters...)) {
    return reinterpret_cast<TolmAIPEventCallback>(function);
}

// An application is identified by its application id and its organisation id. Results that are lists are appended to.
class TolmApmAdaptorIpc : public tolm::TolmAdaptorClient,
                          public TolmBaseServer,
                          public tolm::TolmAdaptorInstance<TolmApmAdaptorIpc> {
  public:
    // Registers a function and a context. The first function of an event stays until it is unregistered; the contexts
    // of later registrations are added. Returns 0.
    int RegisterAIPEventCallback(TolmAIPEvent event, TolmAIPEventCallback callback, void* context);

    // Removes the event's function, even if other contexts are left, and all registrations of this context. An event
    // may still reach the function. Returns 0.
    int UnRegisterAIPEventCallback(TolmAIPEvent event, void* context);

    void ClearAPIEventCallback();

    // Replaces the ids of an application by those of its owner.
    int GetOwnerApp(int& appId, int& orgId);
    int GetCurrentApp(int& appId, int& orgId);

    // Appends the (application id, organisation id) of each. An invalid id is 0.
    int GetChildApps(int appId, int orgId, std::vector<std::pair<int, int>>& apps);

    // Fails for a null URL.
    int CreateApp(int appId, int orgId, const char* url, bool child, bool opapp, int& newAppId, int& newOrgId);
    int DestroyApp(int appId, int orgId);
    int ShowApp(int appId, int orgId);
    int HideApp(int appId, int orgId);

    int GetValue(int appId, int orgId, int& value);
    int GetOtherKeys(int appId, int orgId, std::vector<int>& keys);
    int GetMaxiMumValue(int appId, int orgId, int& value);
    int GetMaxiMumOtherKeys(int appId, int orgId, std::vector<int>& keys);
    int SetValue(int appId, int orgId, int value, const std::vector<int>& otherKeys);
    int GetKeyIcon(int appId, int orgId, int code, std::string& icon);
    int GetKeyLabel(int appId, int orgId, int code, std::string& label);

    int SetDeviceResolution(unsigned width, unsigned height);
    int GetVBResouceAllowed(int tabId, bool& allowed);
    int SetBRAppToBI(int tabId);
    int GetAppType(int tabId, int& appType);
    int SetBIAppToBR(int tabId);
    int KeyConsumedByBrowser(int tabId, int keyCode, bool& consumed);
    int NotifyDSMCCResponseToAPM(const std::string& url, const std::string& path);

    void ReceiveIpc(const Json::Value& msg) override;
    void ReceiveIpc(const Json::Value& msg, Json::Value& reply) override;

  private:
    friend class tolm::TolmAdaptorInstance<TolmApmAdaptorIpc>;
    TolmApmAdaptorIpc();
    ~TolmApmAdaptorIpc() override;

    struct Registration {
        TolmAIPEventCallback callback = nullptr;
        std::vector<void*> contexts;
    };

    // Returns a copy: functions are called without a lock.
    Registration RegistrationOf(TolmAIPEvent event);

    std::mutex mCallbackMutex;
    std::map<TolmAIPEvent, TolmAIPEventCallback> mCallbacks;  // guarded by mCallbackMutex
    std::map<TolmAIPEvent, std::vector<void*>> mContexts;     // guarded by mCallbackMutex
};
