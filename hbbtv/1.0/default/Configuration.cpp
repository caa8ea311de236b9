#include "Configuration.h"

#include <hidl/HidlTransportSupport.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "utils/include/tolm_hidl_answer.h"
#include "utils/include/tolm_hidl_transaction.h"
#include "utils/include/tolm_registered_client.h"
#include "utils/include/tolm_service_tags.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmConfigurationAdaptorIpc;
using ::android::hidl::base::V1_0::IBase;

namespace {

// The registered clients. They, the watch over their processes and the adaptor's receiver change together. Thread-safe.
class RegisteredClients : public TolmServiceInstances {
  public:
    using Client = sp<IConfigurationCallback>;

    // Returns all clients in the order of their registrations. Never waits for a registration, so events may call it.
    std::vector<Client> All() const {
        std::lock_guard<std::mutex> lock(mMutex);
        return mClients;
    }

    // As above, but returns none if no service exists or the client-gone flag is set.
    std::vector<Client> AllLiving() const { return HasClient() ? All() : std::vector<Client>(); }

    // Adds a client. Returns the platform's status for the first one. A further client is served like the first
    // although -1 is returned; clients know that.
    int Register(const TolmServiceMethod& service, const Client& client) {
        if (!service.Accepts(client) || Adaptor::GetInstance() == nullptr) return -1;
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return -1;
        const bool first = All().empty();
        Add(client);
        service->StartMonitor(client);
        return first ? TolmCallAdaptor(&Adaptor::RegisterCallback, TolmConfigurationCallback) : -1;
    }

    // Removes one registration of a client. Returns the platform's status once there is no client, and -1 before.
    int Unregister(const TolmServiceMethod& service, const Client& client) {
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) return -1;
        const Client removed = Remove(client);
        if (All().empty()) {
            if (removed != nullptr) service->StopMonitor(removed);
            return TolmCallAdaptor(&Adaptor::UnregisterCallback);
        }
        if (removed != nullptr) {
            // The others stay, so the client-gone flag must not be set even for a moment.
            service.LogStop();
            service->Forget(removed);
        }
        return -1;
    }

    // Ends the delivery to all clients when one dies: the others must register again.
    void OnDied(const TolmServiceMethod& service, const wp<IBase>& who) {
        service.LogDeath();
        const tolm::CallerQueue::Turn turn(mRegistering);
        if (!turn) {
            if (Has(who)) RemoveAll();  // without the platform, which does not reply
            return;
        }
        if (!Has(who)) {
            // The client has just unregistered, and the others are alive.
            service->SetClientDied(All().empty());
            return;
        }
        for (const Client& client : RemoveAll()) service->StopMonitor(client);
        TolmCallAdaptor(&Adaptor::UnregisterCallback);
    }

  private:
    bool Has(const wp<IBase>& who) const {
        const std::vector<Client> clients = All();
        return std::any_of(clients.begin(), clients.end(),
                           [&](const Client& client) { return wp<IBase>(sp<IBase>(client)) == who; });
    }

    void Add(const Client& client) {
        std::lock_guard<std::mutex> lock(mMutex);
        mClients.push_back(client);
    }

    // Removes a client and returns it as it was registered, or null: each call of a client has its own proxy.
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

    // A turn is while the clients, the watch and the adaptor's receiver change, for which the platform may be called;
    // events need none.
    tolm::CallerQueue mRegistering{IConfigurationCallback::descriptor, tolm::ReplyTimeout()};

    mutable std::mutex mMutex;
    std::vector<Client> mClients;  // guarded by mMutex
};

RegisteredClients mConfigurationCallback;

}  // namespace

Configuration::Configuration()
    : TolmHidlClientMonitor(tolm::kConfigurationTag, mConfigurationCallback, tolm::families::kConfiguration) {}

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

Return<int32_t> Configuration::RegisterCallback(const sp<IConfigurationCallback>& callback) {
    return mConfigurationCallback.Register(this, callback);
}

Return<int32_t> Configuration::UnregisterCallback(const sp<IConfigurationCallback>& callback) {
    return mConfigurationCallback.Unregister(this, callback);
}

void Configuration::OnHidlClientDied(uint64_t, const wp<::android::hidl::base::V1_0::IBase>& who) {
    mConfigurationCallback.OnDied(this, who);
}

void TolmConfigurationCallback(const TolmConfigurationEvent& event, ::TolmConfigurationEventInfo info, const void*) {
    const std::vector<sp<IConfigurationCallback>> clients = mConfigurationCallback.AllLiving();
    if (clients.empty()) return;
    const V1_0::TolmConfigurationEventInfo hidlInfo{info.width,
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
        tolm::Received(client->onConfigurationEvent(event, hidlInfo), tolm::kConfigurationTag);
    }
}

IConfiguration* HIDL_FETCH_IConfiguration(const char*) {
    return new Configuration();
}

}  // namespace vantorel::hardware::hbbtv::implementation
