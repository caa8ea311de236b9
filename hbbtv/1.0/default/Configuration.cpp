#include "Configuration.h"

#include <hidl/HidlTransportSupport.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "ipc/tolm_log.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmConfigurationAdaptorIpc;
using ::android::hidl::base::V1_0::IBase;

namespace {

constexpr char kTag[] = "[hidl_configuration_wrapper_server]";

// The registered clients, in the order of their registrations. Any thread.
class Clients {
  public:
    using Client = sp<IConfigurationCallback>;

    std::vector<Client> All() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mClients;
    }

    bool Empty() const { return All().empty(); }

    bool Have(const wp<IBase>& who) const {
        const std::vector<Client> clients = All();
        return std::any_of(clients.begin(), clients.end(),
                           [&](const Client& client) { return wp<IBase>(sp<IBase>(client)) == who; });
    }

    void Add(const Client& client) {
        std::lock_guard<std::mutex> lock(mMutex);
        mClients.push_back(client);
    }

    // Takes one out and gives it as it was registered, or null: each call of a client comes with a proxy of its own.
    Client Remove(const Client& client) {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = std::find_if(mClients.begin(), mClients.end(), [&](const Client& registered) {
            return ::android::hardware::interfacesEqual(registered, client);
        });
        if (found == mClients.end()) return nullptr;
        const Client removed = *found;
        mClients.erase(found);
        return removed;
    }

    std::vector<Client> RemoveAll() {
        std::lock_guard<std::mutex> lock(mMutex);
        return std::exchange(mClients, {});
    }

  private:
    mutable std::mutex mMutex;
    std::vector<Client> mClients;  // guarded by mMutex
};

Clients mConfigurationCallback;
TolmServiceInstance mService;

// The clients, the watch over them and the adaptor's receiver change together. Not taken by events.
std::mutex mRegistering;

}  // namespace

Configuration::Configuration() : TolmHidlClientMonitor(kTag, &mService) {}

Return<void> Configuration::GetPreferredAudioLanguage(GetPreferredAudioLanguage_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetPreferredAudioLanguage);
}

Return<int32_t> Configuration::SetPreferredAudioLanguage(const hidl_string& languages) {
    return Status(&Adaptor::SetPreferredAudioLanguage, languages);
}

Return<void> Configuration::GetPreferredSubtitleLanguage(GetPreferredSubtitleLanguage_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetPreferredSubtitleLanguage);
}

Return<int32_t> Configuration::SetPreferredSubtitleLanguage(const hidl_string& languages) {
    return Status(&Adaptor::SetPreferredSubtitleLanguage, languages);
}

Return<void> Configuration::GetPreferredUILanguage(GetPreferredUILanguage_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetPreferredUILanguage);
}

Return<int32_t> Configuration::SetPreferredUILanguage(const hidl_string& languages) {
    return Status(&Adaptor::SetPreferredUILanguage, languages);
}

Return<void> Configuration::GetCountryId(GetCountryId_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCountryId);
}

Return<int32_t> Configuration::SetCountryId(const hidl_string& countryId) {
    return Status(&Adaptor::SetCountryId, countryId);
}

Return<void> Configuration::GetRegionId(GetRegionId_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetRegionId);
}

Return<int32_t> Configuration::SetRegionId(uint32_t regionId) {
    return Status(&Adaptor::SetRegionId, regionId);
}

Return<void> Configuration::GetAudioDescriptionEnable(GetAudioDescriptionEnable_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAudioDescriptionEnable);
}

Return<void> Configuration::GetAudioHearingImpaired(GetAudioHearingImpaired_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAudioHearingImpaired);
}

Return<void> Configuration::GetDeviceIdContent(GetDeviceIdContent_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDeviceIdContent);
}

Return<void> Configuration::GetDeviceIdEnable(GetDeviceIdEnable_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDeviceIdEnable);
}

Return<void> Configuration::GetSubtitleEnable(GetSubtitleEnable_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSubtitleEnable);
}

Return<void> Configuration::GetDttNetworkIds(GetDttNetworkIds_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDttNetworkIds);
}

Return<void> Configuration::GetRatingAge(GetRatingAge_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetRatingAge);
}

Return<void> Configuration::GetDNTPolicy(GetDNTPolicy_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDNTPolicy);
}

// A further client is served like the first, although its status says otherwise; clients know that.
Return<int32_t> Configuration::RegisterCallback(const sp<IConfigurationCallback>& callback) {
    if (callback == nullptr) {
        TOLM_LOG(ANDROID_LOG_ERROR, kTag, "cb is null");
        return -1;
    }
    Adaptor* adaptor = Adaptor::GetInstance();
    if (adaptor == nullptr) return -1;
    std::lock_guard<std::mutex> lock(mRegistering);
    const bool first = mConfigurationCallback.Empty();
    mConfigurationCallback.Add(callback);
    StartMonitor(callback);
    return first ? adaptor->RegisterCallback(TolmConfigurationCallback) : -1;
}

Return<int32_t> Configuration::UnregisterCallback(const sp<IConfigurationCallback>& callback) {
    std::lock_guard<std::mutex> lock(mRegistering);
    const sp<IConfigurationCallback> removed = mConfigurationCallback.Remove(callback);
    if (!mConfigurationCallback.Empty()) {
        if (removed != nullptr) {
            // The others stay, and with them the flag.
            TOLM_LOG(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::StopMonitor");
            Forget(removed);
        }
        return -1;
    }
    if (removed != nullptr) StopMonitor(removed);
    return Status(&Adaptor::UnregisterCallback);
}

// The death of one client ends the delivery to all: who lives registers anew.
void Configuration::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    TOLM_LOG(ANDROID_LOG_INFO, kTag, "ClientDeathRecipient::serviceDied - client died");
    std::lock_guard<std::mutex> lock(mRegistering);
    if (!mConfigurationCallback.Have(who)) {
        // It was taken back just now; the others are alive.
        SetClientDied(mConfigurationCallback.Empty());
        return;
    }
    for (const sp<IConfigurationCallback>& client : mConfigurationCallback.RemoveAll()) StopMonitor(client);
    if (Adaptor* adaptor = Adaptor::GetInstance()) adaptor->UnregisterCallback();
}

void TolmConfigurationCallback(const TolmConfigurationEvent& event, ::TolmConfigurationEventInfo info, const void*) {
    const std::vector<sp<IConfigurationCallback>> clients = mConfigurationCallback.All();
    if (clients.empty() || !mService.HasClient()) return;
    const V1_0::TolmConfigurationEventInfo told{info.width,
                                                info.height,
                                                info.uiLanguage,
                                                info.audioLanguage,
                                                info.subtitleLanguage,
                                                info.subtitlesEnabled,
                                                info.audioDescriptionEnabled,
                                                info.hearingImpaired,
                                                info.region,
                                                info.ratingAge,
                                                info.doNotTrackPolicy,
                                                info.cookiePolicy,
                                                info.persistentStorage,
                                                info.blockTrackingSites,
                                                info.deviceId,
                                                info.deviceIdTimestamp};
    for (const sp<IConfigurationCallback>& client : clients) {
        // The client may have died just now: then there is nobody to tell.
        (void)client->onConfigurationEvent(event, told).isOk();
    }
}

IConfiguration* HIDL_FETCH_IConfiguration(const char*) {
    return new Configuration();
}

}  // namespace vantorel::hardware::hbbtv::implementation
