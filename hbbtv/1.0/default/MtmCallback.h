// From the platform's tab manager to the browser: what the adaptor calls, and the registered IMtmCallback does.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IMtmCallback.h>

#include <chrono>
#include <functional>

#include "ipc/src/mtm/tolm_mtm_callback.h"
#include "utils/include/tolm_bounded_calls.h"

namespace vantorel::hardware::hbbtv::implementation {

// Each operation gives what the client gives, or -1 when there is no client, or it has died, dies meanwhile, calls no
// result callback or does not return in time: the platform waits for some of them, and is never left without a reply.
class MtmCallback : public TolmMtmCallback {
  public:
    // Longer than a browser needs for a tab or a file.
    static constexpr std::chrono::seconds kPatience{10};

    explicit MtmCallback(std::chrono::milliseconds patience = kPatience) : mCalls(patience) {}

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

    // `call` may run on when this has returned: it owns what it touches.
    int Tell(std::function<::android::hardware::Return<int32_t>(Client& client)> call);

    // The same for a call with a result. `call` is given where the status (-1 at first) and the result belong.
    template <typename Result>
    int Ask(Result& result,
            std::function<::android::hardware::Return<void>(Client& client, int& status, Result& result)> call);

    TolmBoundedCalls mCalls;
};

}  // namespace vantorel::hardware::hbbtv::implementation
