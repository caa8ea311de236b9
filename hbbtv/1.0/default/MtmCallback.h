// From the platform's tab manager to the browser: the adaptor calls it, and it calls the registered IMtmCallback.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtmCallback.h>

#include <chrono>
#include <functional>

#include "ipc/src/mtm/tolm_mtm_callback.h"
#include "utils/include/tolm_bounded_calls.h"
#include "utils/include/tolm_registered_client.h"

namespace vantorel::hardware::hbbtv::implementation {

// Each operation returns what the client returns. It returns -1 if there is no client, or if the client has died, dies
// during the call, does not call the result callback, or does not return in time: the platform waits for the reply to
// some operations and always gets one.
class MtmCallback : public TolmMtmCallback {
  public:
    using RegisteredClient = TolmRegisteredClient<V1_0::IMtmCallback>;

    // Longer than a browser needs for a tab or a file.
    static constexpr std::chrono::seconds kPatience{10};

    // `client` is not owned.
    explicit MtmCallback(const RegisteredClient& client, std::chrono::milliseconds patience = kPatience)
        : mClient(client), mCalls(patience) {}

    int SetAppConfig(int tabId, bool isBroadcastRelated) override;
    int SetDvbOrigin(int tabId, const std::string& origin) override;
    int CreateApp(const std::string& url, bool autoShow, bool isBroadcastRelated, const std::string& appMode,
                  const std::vector<std::string>& boundaries, int& tabId) override;
    int DestroyApp(int tabId) override;
    int DestroyAllApps() override;
    int ShowHideTab(int tabId, bool show, bool isMulti) override;
    int GetXmlFile(const std::string& url, const std::string& appId, std::string& xmlFile) override;
    int LoadURLInTab(int tabId, const std::string& url, bool autoShow, bool isBroadcastRelated,
                     const std::string& appMode, const std::vector<std::string>& boundaries) override;
    int GetRenderProcessId(int tabId, int& renderId) override;
    int SendKey(int key, int keyType, int keyEventId) override;
    int Ping(int* status) override;

  private:
    using Client = V1_0::IMtmCallback;

    // `call` may continue after this has returned, so it owns what it uses.
    int Call(std::function<::android::hardware::Return<int32_t>(Client& client)> call,
             const char* function = __builtin_FUNCTION());

    // As above, for a call with a result. `call` sets the status (-1 at first) and the result.
    template <typename Result>
    int CallForResult(
        Result& result,
        std::function<::android::hardware::Return<void>(Client& client, int& status, Result& result)> call,
        const char* function = __builtin_FUNCTION());

    const RegisteredClient& mClient;
    TolmBoundedCalls mCalls;
};

}  // namespace vantorel::hardware::hbbtv::implementation
