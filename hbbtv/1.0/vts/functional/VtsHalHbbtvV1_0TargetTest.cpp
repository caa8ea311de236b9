// Walks through the interfaces as a client on a television, against its platform. It changes nothing that lasts, but it
// registers callbacks: end the browser first. The platform must receive at least one channel.

#include <gtest/gtest.h>
#include <hidl/HidlTransportSupport.h>
#include <vantorel/hardware/hbbtv/1.0/IAVComponent.h>
#include <vantorel/hardware/hbbtv/1.0/IAVControl.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationManager.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationPrivatedata.h>
#include <vantorel/hardware/hbbtv/1.0/ICapabilities.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>
#include <vantorel/hardware/hbbtv/1.0/IConfiguration.h>
#include <vantorel/hardware/hbbtv/1.0/IDsmcc.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteList.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteListCollection.h>
#include <vantorel/hardware/hbbtv/1.0/ILocalSystem.h>
#include <vantorel/hardware/hbbtv/1.0/IMtm.h>
#include <vantorel/hardware/hbbtv/1.0/IParentalControlManager.h>
#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>
#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <string>

namespace {

using ::android::sp;
using ::android::hardware::hidl_death_recipient;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::android::hidl::base::V1_0::IBase;
using namespace ::vantorel::hardware::hbbtv::V1_0;

// Returns null, and fails the test, if the interface is not served by another process.
template <typename Interface>
sp<Interface> Served() {
    const sp<Interface> service = Interface::tryGetService();
    EXPECT_NE(service, nullptr) << Interface::descriptor;
    if (service == nullptr) return nullptr;
    EXPECT_TRUE(service->isRemote());
    return service;
}

// Calls a method that returns a status and one value; fails the test unless the status is 0.
template <typename Value, typename Interface, typename Method, typename... Arguments>
Value Get(const sp<Interface>& service, Method method, const Arguments&... arguments) {
    Value result{};
    if (service == nullptr) return result;
    int32_t status = -1;
    const auto keep = [&](int32_t theStatus, const auto& value) {
        status = theStatus;
        result = value;
    };
    EXPECT_TRUE(((*service).*method)(arguments..., keep).isOk());
    EXPECT_EQ(status, 0) << Interface::descriptor;
    return result;
}

void ExpectDone(const Return<int32_t>& status) {
    ASSERT_TRUE(status.isOk());
    EXPECT_EQ(static_cast<int32_t>(status), 0);
}

class DeathRecipient : public hidl_death_recipient {
    void serviceDied(uint64_t, const ::android::wp<IBase>&) override {}
};

template <typename Interface>
class EveryInterface : public ::testing::Test {};

using Interfaces =
    ::testing::Types<IAVComponent, IAVControl, IApplicationManager, IApplicationPrivatedata, ICapabilities, IChannel,
                     IChannelConfig, IChannelList, IConfiguration, IDsmcc, IFavouriteList, IFavouriteListCollection,
                     ILocalSystem, IMtm, IParentalControlManager, IProgramme, ISearchManager, IVideoBroadcast>;
TYPED_TEST_SUITE(EveryInterface, Interfaces);

TYPED_TEST(EveryInterface, IsServedByAnotherProcess) {
    const sp<TypeParam> service = Served<TypeParam>();
    ASSERT_NE(service, nullptr);
    EXPECT_TRUE(service->ping().isOk());
    EXPECT_TRUE(
        service
            ->interfaceDescriptor([](const hidl_string& name) { EXPECT_EQ(std::string(name), TypeParam::descriptor); })
            .isOk());
    EXPECT_TRUE(service->debug(hidl_handle(), {}).isOk());
}

TYPED_TEST(EveryInterface, IsReleased) {
    const sp<TypeParam> service = Served<TypeParam>();
    ASSERT_NE(service, nullptr);
    EXPECT_TRUE(service
                    ->getHashChain([](const auto& chain) {
                        ASSERT_EQ(chain.size(), 2u);
                        bool zero = true;
                        for (size_t i = 0; i < 32; ++i) zero = zero && chain[0][i] == 0;
                        EXPECT_FALSE(zero) << "not in current.txt";
                    })
                    .isOk());
}

TYPED_TEST(EveryInterface, ReportsTheDeathOfItsProcess) {
    const sp<TypeParam> service = Served<TypeParam>();
    ASSERT_NE(service, nullptr);
    const sp<DeathRecipient> recipient = new DeathRecipient;
    EXPECT_TRUE(service->linkToDeath(recipient, 1).withDefault(false));
    EXPECT_TRUE(service->unlinkToDeath(recipient).withDefault(false));
}

TEST(Platform, DescribesItsChannels) {
    const sp<IChannelConfig> config = Served<IChannelConfig>();
    const sp<IChannelList> list = Served<IChannelList>();
    const sp<IChannel> channel = Served<IChannel>();
    const int64_t all = Get<int64_t>(config, &IChannelConfig::GetChannelList);
    ASSERT_NE(all, 0);
    ASSERT_GT(Get<uint32_t>(list, &IChannelList::GetLength, all), 0u);
    const int64_t first = Get<int64_t>(list, &IChannelList::Item, all, 0);
    ASSERT_NE(first, 0);
    EXPECT_NE(Get<hidl_string>(channel, &IChannel::GetName, first), "");
    EXPECT_NE(Get<hidl_string>(channel, &IChannel::GetCcid, first), "");
}

TEST(Platform, DescribesItsFavouriteLists) {
    const int64_t lists = Get<int64_t>(Served<IChannelConfig>(), &IChannelConfig::GetFavouriteListCollection);
    const sp<IFavouriteListCollection> collection = Served<IFavouriteListCollection>();
    const sp<IFavouriteList> favourites = Served<IFavouriteList>();
    const uint32_t length = Get<uint32_t>(collection, &IFavouriteListCollection::GetLength, lists);
    for (uint32_t i = 0; i < length; ++i) {
        const int64_t one = Get<int64_t>(collection, &IFavouriteListCollection::Item, lists, static_cast<int32_t>(i));
        EXPECT_NE(Get<hidl_string>(favourites, &IFavouriteList::GetFavID, one), "");
    }
}

TEST(Platform, DescribesTheTelevision) {
    EXPECT_EQ(Get<hidl_string>(Served<IConfiguration>(), &IConfiguration::GetCountryId).size(), 3u);
    EXPECT_NE(Get<hidl_string>(Served<ILocalSystem>(), &ILocalSystem::GetVendorName), "");
    EXPECT_NE(Get<hidl_string>(Served<ICapabilities>(), &ICapabilities::GetXmlCapabilities), "");
    EXPECT_GE(Get<int32_t>(Served<IApplicationPrivatedata>(), &IApplicationPrivatedata::GetFreeMem), 0);
}

TEST(Platform, CreatesAndDestroysItsObjects) {
    const sp<IVideoBroadcast> vb = Served<IVideoBroadcast>();
    const int64_t broadcast = Get<int64_t>(vb, &IVideoBroadcast::Create, 1);
    ASSERT_NE(broadcast, 0);
    Get<TolmVBPlayState>(vb, &IVideoBroadcast::GetPlayState, broadcast);
    ExpectDone(vb->Destroy(broadcast));

    const sp<IParentalControlManager> parental = Served<IParentalControlManager>();
    const int64_t manager = Get<int64_t>(parental, &IParentalControlManager::Create);
    Get<uint32_t>(parental, &IParentalControlManager::GetParentalRatingSchemeNum, manager);
    ExpectDone(parental->Destroy(manager));

    const sp<ISearchManager> search = Served<ISearchManager>();
    const int64_t searches = Get<int64_t>(search, &ISearchManager::SearchManager_Create);
    ExpectDone(search->SearchManager_Destroy(searches));
}

class ComponentListener : public IAVControlCallback {
    Return<void> onComponentSelect(int32_t, TolmHbbtvAVComponentType, int32_t) override { return Void(); }
};

class FileListener : public IDsmccCallback {
    Return<void> OnDsmccFileEvent(int32_t, const hidl_string&, const hidl_string&, int64_t) override { return Void(); }
};

TEST(Platform, TakesClients) {
    const sp<IAVControl> control = Served<IAVControl>();
    ASSERT_NE(control, nullptr);
    ExpectDone(control->RegisterCallback(new ComponentListener, 1));
    ExpectDone(control->UnregisterCallback());
    const sp<IDsmcc> files = Served<IDsmcc>();
    ASSERT_NE(files, nullptr);
    ExpectDone(files->RegisterCallback(new FileListener));
    ExpectDone(files->UnregisterCallback());
}

// The answer for a handle that it never gave out: an error, and no end of the service.
TEST(Platform, RefusesAnUnknownHandle) {
    int32_t status = 0;
    const auto keep = [&](int32_t theStatus, const auto&) { status = theStatus; };
    const sp<IProgramme> programme = Served<IProgramme>();
    ASSERT_NE(programme, nullptr);
    EXPECT_TRUE(programme->GetName(0, keep).isOk());
    EXPECT_NE(status, 0);
    status = 0;
    const sp<IAVComponent> component = Served<IAVComponent>();
    ASSERT_NE(component, nullptr);
    EXPECT_TRUE(component->GetType(0, keep).isOk());
    EXPECT_NE(status, 0);
}

}  // namespace
