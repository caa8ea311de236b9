#include "MtmCallback.h"

#include <memory>
#include <utility>

#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::sp;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;

namespace {

hidl_vec<hidl_string> ToHidl(const std::vector<std::string>& strings) {
    return hidl_vec<hidl_string>(strings.begin(), strings.end());
}

}  // namespace

int MtmCallback::Call(std::function<Return<int32_t>(Client&)> call, const char* function) {
    const sp<Client> client = mClient.GetLiving();
    if (client == nullptr) return -1;
    return mCalls.Run(client.get(), [client, call = std::move(call), function] {
        const Return<int32_t> status = call(*client);
        return tolm::Received(status, tolm::kMtmTag, function) ? static_cast<int32_t>(status) : -1;
    });
}

template <typename Result>
int MtmCallback::CallForResult(Result& result, std::function<Return<void>(Client&, int&, Result&)> call,
                               const char* function) {
    const auto owned = std::make_shared<Result>(result);
    const int status = Call([owned, call = std::move(call), function](Client& client) -> Return<int32_t> {
        int answered = -1;
        return tolm::Received(call(client, answered, *owned), tolm::kMtmTag, function) ? answered : -1;
    });
    if (status == 0) result = *owned;
    return status;
}

int MtmCallback::SetAppConfig(int tabId, bool isBroadcastRelated) {
    return Call([=](Client& client) { return client.SetAppConfig(tabId, isBroadcastRelated); });
}

int MtmCallback::SetDvbOrigin(int tabId, const std::string& origin) {
    return Call([=](Client& client) { return client.SetDvbOrigin(tabId, origin); });
}

int MtmCallback::CreateApp(const std::string& url, bool autoShow, bool isBroadcastRelated, const std::string& appMode,
                           const std::vector<std::string>& boundaries, int& tabId) {
    return CallForResult<int>(tabId, [=](Client& client, int& status, int& tab) {
        return client.CreateApp(url, autoShow, isBroadcastRelated, appMode, ToHidl(boundaries),
                                [&](int32_t theStatus, int32_t theTab) {
                                    status = theStatus;
                                    tab = theTab;
                                });
    });
}

int MtmCallback::DestroyApp(int tabId) {
    return Call([=](Client& client) { return client.DestroyApp(tabId); });
}

int MtmCallback::DestroyAllApps() {
    return Call([](Client& client) { return client.DestroyAllApps(); });
}

int MtmCallback::ShowHideTab(int tabId, bool show, bool isMulti) {
    return Call([=](Client& client) { return client.ShowHideTab(tabId, show, isMulti); });
}

int MtmCallback::GetXmlFile(const std::string& url, const std::string& appId, std::string& xmlFile) {
    return CallForResult<std::string>(xmlFile, [=](Client& client, int& status, std::string& file) {
        return client.GetXmlFile(url, appId, [&](int32_t theStatus, const hidl_string& theFile) {
            status = theStatus;
            file = theFile;
        });
    });
}

int MtmCallback::LoadURLInTab(int tabId, const std::string& url, bool autoShow, bool isBroadcastRelated,
                              const std::string& appMode, const std::vector<std::string>& boundaries) {
    return Call([=](Client& client) {
        return client.LoadURLInTab(tabId, url, autoShow, isBroadcastRelated, appMode, ToHidl(boundaries));
    });
}

int MtmCallback::GetRenderProcessId(int tabId, int& renderId) {
    return CallForResult<int>(renderId, [=](Client& client, int& status, int& id) {
        return client.GetRenderProcessId(tabId, [&](int32_t theStatus, int32_t theId) {
            status = theStatus;
            id = theId;
        });
    });
}

int MtmCallback::SendKey(int key, int keyType, int keyEventId) {
    return Call([=](Client& client) { return client.SendKey(key, keyType, keyEventId); });
}

int MtmCallback::Ping(int* status) {
    return CallForResult<int>(*status, [](Client& client, int& answered, int& browserStatus) {
        return client.Ping([&](int32_t theStatus, int32_t theBrowserStatus) {
            answered = theStatus;
            browserStatus = theBrowserStatus;
        });
    });
}

}  // namespace vantorel::hardware::hbbtv::implementation
