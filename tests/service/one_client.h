// The suites of all services with one client that receives events. The test program of such a service instantiates them
// for its fixture, mostly a OneClientEvents, with:
//
//     static constexpr char kEvent[], kCall[];      // an event, and the call of the client for it
//     void Register(const android::sp<Client>&);    // succeeds
//     void RefuseNull();                            // registers null and checks that this is refused
//     void Unregister();                            // succeeds; where a client can unregister
//     static void Receive();                        // calls what the adaptor calls for an event
//     static constexpr char kReceived[];            // the call of the client for that
#pragma once

#include <thread>

#include "beside.h"
#include "service_events.h"

namespace hbbtv::test {

template <typename TheService, typename TheClient>
class OneClientEvents : public ServiceEvents<TheService, TheClient> {
  protected:
    using ServiceEvents<TheService, TheClient>::ServiceEvents;

    // Return the status of the service.
    virtual int TryRegister(const android::sp<TheClient>& client) = 0;
    virtual int TryUnregister() { return -1; }

    void Register(const android::sp<TheClient>& client) { ASSERT_EQ(TryRegister(client), 0); }
    void RefuseNull() { EXPECT_EQ(TryRegister(nullptr), -1); }
    void Unregister() { ASSERT_EQ(TryUnregister(), 0); }
};

template <typename Events>
class OneClient : public Events {};

TYPED_TEST_SUITE_P(OneClient);

TYPED_TEST_P(OneClient, IsWatchedOnceItIsRegistered) {
    this->Register(this->mClient);
    EXPECT_EQ(this->mClient->Linked().size(), 1u);
    EXPECT_EQ(this->mClient->Cookie(), 0u);
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStarted), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStopped), 0);
    EXPECT_EQ(this->Logged(ANDROID_LOG_ERROR, kNoCallback), 0);
}

TYPED_TEST_P(OneClient, StaysRegisteredWhenANullCallbackIsRefused) {
    this->RefuseNull();
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStarted), 0);
    this->Register(this->mClient);
    this->mPlatform.ForgetFrames();
    this->RefuseNull();
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStarted), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_ERROR, kNoCallback), 2);
    EXPECT_THAT(this->Requests(), testing::IsEmpty());
    EXPECT_EQ(this->mClient->Linked().size(), 1u);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClient, IsReplacedByASecondOne) {
    const android::sp<typename TestFixture::Client> second = new typename TestFixture::Client;
    this->Register(this->mClient);
    this->Register(second);
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    EXPECT_EQ(second->Linked().size(), 1u);
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStopped), 0);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
    EXPECT_THAT(second->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClient, IsNotKeptOnceItIsReplaced) {
    android::sp<typename TestFixture::Client> first = new typename TestFixture::Client;
    const android::wp<typename TestFixture::Client> watched = first;
    this->Register(first);
    first.clear();
    EXPECT_NE(watched.promote().get(), nullptr);
    this->Register(this->mClient);
    EXPECT_EQ(watched.promote().get(), nullptr);
}

TYPED_TEST_P(OneClient, ThatRegistersAgainHasOneDeathNotification) {
    this->Register(this->mClient);
    this->Register(this->mClient);
    EXPECT_EQ(this->mClient->Linked().size(), 1u);
    this->mClient->Die();
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kDied), 1);
}

TYPED_TEST_P(OneClient, IsDroppedWhenItDiesAndTheNextOneIsServed) {
    this->Register(this->mClient);
    this->mLog.Clear();
    this->mClient->Die();
    EXPECT_EQ(this->mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"), 1);
    EXPECT_EQ(this->mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kDied), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStopped), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_ERROR, kNoCallback), 0);
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());

    const android::sp<typename TestFixture::Client> next = new typename TestFixture::Client;
    this->Register(next);
    EXPECT_EQ(next->Linked().size(), 1u);
    this->Send(this->kEvent);
    EXPECT_THAT(next->Calls(), testing::ElementsAre(this->kCall));
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
}

TYPED_TEST_P(OneClient, IsNotAffectedByALateDeathNotificationOfItsPredecessor) {
    const android::sp<typename TestFixture::Client> second = new typename TestFixture::Client;
    this->Register(this->mClient);
    const auto recipient = this->mClient->Linked().at(0);
    this->Register(second);
    this->mPlatform.ForgetFrames();
    recipient->serviceDied(0, android::wp<IBase>(this->mClient.get()));
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kDied), 0);
    // Also if the recipient had already accepted the notification.
    this->mService->OnHidlClientDied(0, android::wp<IBase>(this->mClient.get()));
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStopped), 0);
    EXPECT_THAT(this->Requests(), testing::IsEmpty());
    EXPECT_EQ(second->Linked().size(), 1u);
    this->Send(this->kEvent);
    EXPECT_THAT(second->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClient, ThatIsNullIsNotWatched) {
    this->mService->StartMonitor(nullptr);
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStarted), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_ERROR, kNoCallback), 1);
    this->mService->StopMonitor(nullptr);
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStopped), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_ERROR, kNoCallback), 2);
}

TYPED_TEST_P(OneClient, ThatDiesAfterItsServiceIsIgnored) {
    this->Register(this->mClient);
    const auto recipient = this->mClient->Linked().at(0);
    this->mService.clear();
    recipient->serviceDied(0, android::wp<IBase>(this->mClient.get()));
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kDied), 0);
}

TYPED_TEST_P(OneClient, IsServedWhenItRegistersWhileItsPredecessorDies) {
    const android::sp<typename TestFixture::Client> next = new typename TestFixture::Client;
    Beside registration([&] { this->Register(next); });
    this->Register(this->mClient);
    this->mClient->WhenUnlinked([&] { registration.Begin(); });
    this->mClient->Die();
    registration.End();
    EXPECT_EQ(next->Linked().size(), 1u);
    this->Send(this->kEvent);
    EXPECT_THAT(next->Calls(), testing::ElementsAre(this->kCall));
}

// Only a sanitizer finds data races here.
TYPED_TEST_P(OneClient, MayRegisterAndDieDuringEvents) {
    constexpr int kTurns = 100;
    this->Register(this->mClient);
    std::thread registrations([this] {
        for (int i = 0; i < kTurns; ++i) {
            const android::sp<typename TestFixture::Client> client = new typename TestFixture::Client;
            this->Register(client);
            if (i % 2 == 0) client->Die();
        }
    });
    for (int i = 0; i < kTurns; ++i) this->Send(this->kEvent);
    registrations.join();
    const android::sp<typename TestFixture::Client> last = new typename TestFixture::Client;
    this->Register(last);
    this->Send(this->kEvent);
    EXPECT_THAT(last->Calls(), testing::ElementsAre(this->kCall));
}

REGISTER_TYPED_TEST_SUITE_P(OneClient, IsWatchedOnceItIsRegistered, StaysRegisteredWhenANullCallbackIsRefused,
                            IsReplacedByASecondOne, IsNotKeptOnceItIsReplaced,
                            ThatRegistersAgainHasOneDeathNotification, IsDroppedWhenItDiesAndTheNextOneIsServed,
                            IsNotAffectedByALateDeathNotificationOfItsPredecessor, ThatIsNullIsNotWatched,
                            ThatDiesAfterItsServiceIsIgnored, IsServedWhenItRegistersWhileItsPredecessorDies,
                            MayRegisterAndDieDuringEvents);

// For services whose client can unregister.
template <typename Events>
class OneClientThatCanUnregister : public Events {};

TYPED_TEST_SUITE_P(OneClientThatCanUnregister);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientThatCanUnregister);  // not for every service

TYPED_TEST_P(OneClientThatCanUnregister, IsDroppedWhenItUnregisters) {
    this->Register(this->mClient);
    this->mLog.Clear();
    this->Unregister();
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStopped), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_ERROR, kNoCallback), 0);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
    this->Register(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientThatCanUnregister, ThatIsNotRegisteredUnregistersWithAnErrorLine) {
    this->Unregister();
    EXPECT_EQ(this->Logged(ANDROID_LOG_INFO, kStopped), 1);
    EXPECT_EQ(this->Logged(ANDROID_LOG_ERROR, kNoCallback), 1);
}

TYPED_TEST_P(OneClientThatCanUnregister, IsServedWhenItRegistersWhileItsPredecessorUnregisters) {
    const android::sp<typename TestFixture::Client> next = new typename TestFixture::Client;
    Beside registration([&] { this->Register(next); });
    this->Register(this->mClient);
    this->mClient->WhenUnlinked([&] { registration.Begin(); });
    this->Unregister();
    registration.End();
    EXPECT_EQ(next->Linked().size(), 1u);
    this->Send(this->kEvent);
    EXPECT_THAT(next->Calls(), testing::ElementsAre(this->kCall));
}

REGISTER_TYPED_TEST_SUITE_P(OneClientThatCanUnregister, IsDroppedWhenItUnregisters,
                            ThatIsNotRegisteredUnregistersWithAnErrorLine,
                            IsServedWhenItRegistersWhileItsPredecessorUnregisters);

// For services that forward nothing without a service object.
template <typename Events>
class OneClientOfAService : public Events {};

TYPED_TEST_SUITE_P(OneClientOfAService);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientOfAService);  // not for every service

TYPED_TEST_P(OneClientOfAService, IsNotCalledOnceMonitoringHasStopped) {
    this->Register(this->mClient);
    this->mService->StopMonitor(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
    this->mService->StartMonitor(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientOfAService, IsNotCalledOnceTheServiceIsDestroyed) {
    this->Register(this->mClient);
    this->mService.clear();
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());

    this->mService = new typename TestFixture::Service;
    this->Register(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientOfAService, IsServedWhenAnEarlierServiceIsDestroyed) {
    android::sp<typename TestFixture::Service> earlier = this->mService;
    this->mService = new typename TestFixture::Service;
    this->Register(this->mClient);
    earlier.clear();
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientOfAService, IsServedWhenALaterServiceIsDestroyed) {
    this->Register(this->mClient);
    android::sp<typename TestFixture::Service> later = new typename TestFixture::Service;
    later.clear();
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

REGISTER_TYPED_TEST_SUITE_P(OneClientOfAService, IsNotCalledOnceMonitoringHasStopped,
                            IsNotCalledOnceTheServiceIsDestroyed, IsServedWhenAnEarlierServiceIsDestroyed,
                            IsServedWhenALaterServiceIsDestroyed);

// For services that do nothing without an adaptor.
template <typename Events>
class OneClientOfAnAdaptor : public Events {};

TYPED_TEST_SUITE_P(OneClientOfAnAdaptor);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientOfAnAdaptor);  // not for every service

TYPED_TEST_P(OneClientOfAnAdaptor, StaysRegisteredWhenNoAdaptorIsThereForAnother) {
    this->Register(this->mClient);
    UnderTest().deleteInstance();
    const NoMemoryForAdaptors noMemory;
    const android::sp<typename TestFixture::Client> second = new typename TestFixture::Client;
    EXPECT_EQ(this->TryRegister(second), -1);
    EXPECT_THAT(second->Linked(), testing::IsEmpty());
    EXPECT_EQ(this->mClient->Linked().size(), 1u);
    this->Receive();
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kReceived));
}

REGISTER_TYPED_TEST_SUITE_P(OneClientOfAnAdaptor, StaysRegisteredWhenNoAdaptorIsThereForAnother);

// For those whose client can also unregister.
template <typename Events>
class OneClientThatLeavesAnAdaptor : public Events {};

TYPED_TEST_SUITE_P(OneClientThatLeavesAnAdaptor);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientThatLeavesAnAdaptor);  // not for every service

TYPED_TEST_P(OneClientThatLeavesAnAdaptor, IsForgottenAlthoughThereIsNone) {
    this->Register(this->mClient);
    UnderTest().deleteInstance();
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(this->TryUnregister(), -1);
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    this->Receive();
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
}

TYPED_TEST_P(OneClientThatLeavesAnAdaptor, IsForgottenAlthoughThePlatformRefuses) {
    this->Register(this->mClient);
    this->mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(this->TryUnregister(), this->kPassesOnTheStatus ? 6 : 0);
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
}

REGISTER_TYPED_TEST_SUITE_P(OneClientThatLeavesAnAdaptor, IsForgottenAlthoughThereIsNone,
                            IsForgottenAlthoughThePlatformRefuses);

// For services that register their client with the platform.
template <typename Events>
class OneClientOfThePlatform : public Events {};

TYPED_TEST_SUITE_P(OneClientOfThePlatform);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientOfThePlatform);  // not for every service

TYPED_TEST_P(OneClientOfThePlatform, IsRegisteredAlthoughThePlatformRefuses) {
    this->mPlatform.SetReply(R"({"ret": 6})");
    EXPECT_EQ(this->TryRegister(this->mClient), 6);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

REGISTER_TYPED_TEST_SUITE_P(OneClientOfThePlatform, IsRegisteredAlthoughThePlatformRefuses);

// For services that keep the context of the registration. kCallWithoutContext is kCall up to it.
template <typename Events>
class OneClientWithAContext : public Events {};

TYPED_TEST_SUITE_P(OneClientWithAContext);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientWithAContext);  // not for every service

TYPED_TEST_P(OneClientWithAContext, IsTheLastOfTwoThatRegisterAtOnce) {
    const android::sp<typename TestFixture::Client> second = new typename TestFixture::Client;
    Beside registration([&] { EXPECT_EQ(this->TryRegister(second, 2), 0); });
    this->mClient->WhenLinked([&] { registration.Begin(); });
    EXPECT_EQ(this->TryRegister(this->mClient, 1), 0);
    registration.End();
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
    EXPECT_THAT(second->Calls(), testing::ElementsAre(std::string(this->kCallWithoutContext) + "2"));
}

REGISTER_TYPED_TEST_SUITE_P(OneClientWithAContext, IsTheLastOfTwoThatRegisterAtOnce);

}  // namespace hbbtv::test
