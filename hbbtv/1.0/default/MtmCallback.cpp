#include "MtmCallback.h"

#include <memory>
#include <utility>

#include "Mtm.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::hidl_vec;

namespace {

hidl_vec<hidl_string> Texts(const std::vector<std::string>& texts) {
    return hidl_vec<hidl_string>(texts.begin(), texts.end());
}

}  // namespace

int MtmCallback::Tell(std::function<Return<int32_t>(Client&)> call) {
    const sp<Client> client = LivingMtmClient();
    if (client == nullptr) return -1;
    return mCalls.Run(client.get(), [client, call = std::move(call)] {
        const Return<int32_t> status = call(*client);
        return status.isOk() ? static_cast<int32_t>(status) : -1;
    });
}

template <typename Result>
int MtmCallback::Ask(Result& result, std::function<Return<void>(Client&, int&, Result&)> call) {
    const auto given = std::make_shared<Result>(result);
    const int status = Tell([given, call = std::move(call)](Client& client) -> Return<int32_t> {
        int answered = -1;
        const bool isOk = call(client, answered, *given).isOk();
        return isOk ? answered : -1;
    });
    if (status == 0) result = *given;
    return status;
}

int MtmCallback::SetAppConfig(int tabId, bool isBroadcastRelated) {
    return Tell([=](Client& client) { return client.SetAppConfig(tabId, isBroadcastRelated); });
}

int MtmCallback::SetDvbOrigin(int tabId, const std::string& origin) {
    return Tell([=](Client& client) { return client.SetDvbOrigin(tabId, origin); });
}

int MtmCallback::CreateApp(const std::string& url, bool autoShow, bool isBroadcastRelated, const std::string& appMode,
                           const std::vector<std::string>& boundaries, int& tabId) {
    return Ask<int>(tabId, [=](Client& client, int& status, int& tab) {
        return client.CreateApp(url, autoShow, isBroadcastRelated, appMode, Texts(boundaries),
                                [&](int32_t theStatus, int32_t theTab) {
                                    status = theStatus;
                                    tab = theTab;
                                });
    });
}

int MtmCallback::DestroyApp(int tabId) {
    return Tell([=](Client& client) { return client.DestroyApp(tabId); });
}

int MtmCallback::DestroyAllApps() {
    return Tell([](Client& client) { return client.DestroyAllApps(); });
}

int MtmCallback::ShowHideTab(int tabId, bool show, bool isMulti) {
    return Tell([=](Client& client) { return client.ShowHideTab(tabId, show, isMulti); });
}

int MtmCallback::GetXmlFile(const std::string& url, const std::string& appId, std::string& xmlFile) {
    return Ask<std::string>(xmlFile, [=](Client& client, int& status, std::string& file) {
        return client.GetXmlFile(url, appId, [&](int32_t theStatus, const hidl_string& theFile) {
            status = theStatus;
            file = theFile;
        });
    });
}

int MtmCallback::LoadURLInTab(int tabId, const std::string& url, bool autoShow, bool isBroadcastRelated,
                              const std::string& appMode, const std::vector<std::string>& boundaries) {
    return Tell([=](Client& client) {
        return client.LoadURLInTab(tabId, url, autoShow, isBroadcastRelated, appMode, Texts(boundaries));
    });
}

int MtmCallback::GetRenderProcessId(int tabId, int& renderId) {
    return Ask<int>(renderId, [=](Client& client, int& status, int& id) {
        return client.GetRenderProcessId(tabId, [&](int32_t theStatus, int32_t theId) {
            status = theStatus;
            id = theId;
        });
    });
}

int MtmCallback::SendKey(int key, int keyType, int keyEventId) {
    return Tell([=](Client& client) { return client.SendKey(key, keyType, keyEventId); });
}

int MtmCallback::Ping(int* status) {
    return Ask<int>(*status, [](Client& client, int& answered, int& browserStatus) {
        return client.Ping([&](int32_t theStatus, int32_t theBrowserStatus) {
            answered = theStatus;
            browserStatus = theBrowserStatus;
        });
    });
}

}  // namespace vantorel::hardware::hbbtv::implementation
