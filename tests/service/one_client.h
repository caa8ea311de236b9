// What holds of every service with one client that is told of events, for the program of each such service. A program
// instantiates the suites for its fixture, a ServiceEvents with:
//
//     static constexpr char kEvent[], kCall[];      // an event, and the call that it becomes
//     void Register(const android::sp<Client>&);    // which succeeds
//     void RefuseNull();                            // registers no callback, and sees to it that this is refused
//     void Unregister();                            // which succeeds; where a client may leave
#pragma once

#include <thread>

#include "beside.h"
#include "service_events.h"

namespace hbbtv::test {

template <typename Events>
class OneClient : public Events {};

TYPED_TEST_SUITE_P(OneClient);

TYPED_TEST_P(OneClient, IsWatchedFromItsRegistrationOn) {
    this->Register(this->mClient);
    EXPECT_EQ(1u, this->mClient->Linked().size());
    EXPECT_EQ(0u, this->mClient->Cookie());
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kStarted));
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_ERROR, kNoCallback));
}

TYPED_TEST_P(OneClient, StaysWhenANullCallbackIsRefused) {
    this->RefuseNull();
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_INFO, kStarted));
    this->Register(this->mClient);
    this->mPlatform.ForgetFrames();
    this->RefuseNull();
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kStarted));
    EXPECT_EQ(2, this->Logged(ANDROID_LOG_ERROR, kNoCallback));
    EXPECT_THAT(this->Requests(), testing::IsEmpty());
    EXPECT_EQ(1u, this->mClient->Linked().size());
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClient, IsReplacedByASecondOne) {
    const android::sp<typename TestFixture::Client> second = new typename TestFixture::Client;
    this->Register(this->mClient);
    this->Register(second);
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    EXPECT_EQ(1u, second->Linked().size());
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_INFO, kStopped));
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
    EXPECT_THAT(second->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClient, IsNotKeptOnceItIsReplaced) {
    android::sp<typename TestFixture::Client> first = new typename TestFixture::Client;
    const android::wp<typename TestFixture::Client> watched = first;
    this->Register(first);
    first.clear();
    EXPECT_NE(nullptr, watched.promote().get());
    this->Register(this->mClient);
    EXPECT_EQ(nullptr, watched.promote().get());
}

TYPED_TEST_P(OneClient, ThatRegistersAgainHasOneDeathNotice) {
    this->Register(this->mClient);
    this->Register(this->mClient);
    EXPECT_EQ(1u, this->mClient->Linked().size());
    this->mClient->Die();
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kDied));
}

TYPED_TEST_P(OneClient, IsForgottenWhenItDiesAndTheNextIsServed) {
    this->Register(this->mClient);
    this->mLog.Clear();
    this->mClient->Die();
    EXPECT_EQ(1, this->mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "ENTER"));
    EXPECT_EQ(1, this->mLog.Count(ANDROID_LOG_VERBOSE, "[hidl_base]", "LEAVE"));
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kDied));
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_ERROR, kNoCallback));
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());

    const android::sp<typename TestFixture::Client> next = new typename TestFixture::Client;
    this->Register(next);
    EXPECT_EQ(1u, next->Linked().size());
    this->Send(this->kEvent);
    EXPECT_THAT(next->Calls(), testing::ElementsAre(this->kCall));
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
}

TYPED_TEST_P(OneClient, IsLeftAloneByTheLateDeathNoticeOfItsPredecessor) {
    const android::sp<typename TestFixture::Client> second = new typename TestFixture::Client;
    this->Register(this->mClient);
    const auto recipient = this->mClient->Linked().at(0);
    this->Register(second);
    this->mPlatform.ForgetFrames();
    recipient->serviceDied(0, android::wp<IBase>(this->mClient.get()));
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_INFO, kDied));
    // Also when the notice had passed the recipient already.
    this->mService->OnHidlClientDied(0, android::wp<IBase>(this->mClient.get()));
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_THAT(this->Requests(), testing::IsEmpty());
    EXPECT_EQ(1u, second->Linked().size());
    this->Send(this->kEvent);
    EXPECT_THAT(second->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClient, ThatIsNullIsNotWatched) {
    this->mService->StartMonitor(nullptr);
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kStarted));
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_ERROR, kNoCallback));
    this->mService->StopMonitor(nullptr);
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(2, this->Logged(ANDROID_LOG_ERROR, kNoCallback));
}

TYPED_TEST_P(OneClient, ThatDiesAfterItsServiceIsNobodysLoss) {
    this->Register(this->mClient);
    const auto recipient = this->mClient->Linked().at(0);
    this->mService.clear();
    recipient->serviceDied(0, android::wp<IBase>(this->mClient.get()));
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_INFO, kDied));
}

TYPED_TEST_P(OneClient, IsServedWhenItRegistersWhileItsPredecessorDies) {
    const android::sp<typename TestFixture::Client> next = new typename TestFixture::Client;
    Beside registration([&] { this->Register(next); });
    this->Register(this->mClient);
    this->mClient->WhenUnlinked([&] { registration.Begin(); });
    this->mClient->Die();
    registration.End();
    EXPECT_EQ(1u, next->Linked().size());
    this->Send(this->kEvent);
    EXPECT_THAT(next->Calls(), testing::ElementsAre(this->kCall));
}

// What two threads touch at once is only found by a sanitizer.
TYPED_TEST_P(OneClient, MayComeAndGoBesideEvents) {
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

REGISTER_TYPED_TEST_SUITE_P(OneClient, IsWatchedFromItsRegistrationOn, StaysWhenANullCallbackIsRefused,
                            IsReplacedByASecondOne, IsNotKeptOnceItIsReplaced, ThatRegistersAgainHasOneDeathNotice,
                            IsForgottenWhenItDiesAndTheNextIsServed, IsLeftAloneByTheLateDeathNoticeOfItsPredecessor,
                            ThatIsNullIsNotWatched, ThatDiesAfterItsServiceIsNobodysLoss,
                            IsServedWhenItRegistersWhileItsPredecessorDies, MayComeAndGoBesideEvents);

// Where a client can take its registration back.
template <typename Events>
class OneClientThatMayLeave : public Events {};

TYPED_TEST_SUITE_P(OneClientThatMayLeave);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientThatMayLeave);  // not every service is one

TYPED_TEST_P(OneClientThatMayLeave, IsForgottenWhenItLeaves) {
    this->Register(this->mClient);
    this->mLog.Clear();
    this->Unregister();
    EXPECT_THAT(this->mClient->Linked(), testing::IsEmpty());
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(0, this->Logged(ANDROID_LOG_ERROR, kNoCallback));
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
    this->Register(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientThatMayLeave, LeavesWithALineInTheLogWhenItWasNotThere) {
    this->Unregister();
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_INFO, kStopped));
    EXPECT_EQ(1, this->Logged(ANDROID_LOG_ERROR, kNoCallback));
}

TYPED_TEST_P(OneClientThatMayLeave, IsServedWhenItRegistersWhileItsPredecessorLeaves) {
    const android::sp<typename TestFixture::Client> next = new typename TestFixture::Client;
    Beside registration([&] { this->Register(next); });
    this->Register(this->mClient);
    this->mClient->WhenUnlinked([&] { registration.Begin(); });
    this->Unregister();
    registration.End();
    EXPECT_EQ(1u, next->Linked().size());
    this->Send(this->kEvent);
    EXPECT_THAT(next->Calls(), testing::ElementsAre(this->kCall));
}

REGISTER_TYPED_TEST_SUITE_P(OneClientThatMayLeave, IsForgottenWhenItLeaves, LeavesWithALineInTheLogWhenItWasNotThere,
                            IsServedWhenItRegistersWhileItsPredecessorLeaves);

// Where nothing is forwarded without a service.
template <typename Events>
class OneClientOfAService : public Events {};

TYPED_TEST_SUITE_P(OneClientOfAService);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneClientOfAService);  // not every service is one

TYPED_TEST_P(OneClientOfAService, IsToldNothingOnceMonitoringHasStopped) {
    this->Register(this->mClient);
    this->mService->StopMonitor(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());
    this->mService->StartMonitor(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientOfAService, IsToldNothingOnceTheServiceHasGone) {
    this->Register(this->mClient);
    this->mService.clear();
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::IsEmpty());

    this->mService = new typename TestFixture::Service;
    this->Register(this->mClient);
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientOfAService, IsServedWhenAnEarlierServiceGoes) {
    android::sp<typename TestFixture::Service> earlier = this->mService;
    this->mService = new typename TestFixture::Service;
    this->Register(this->mClient);
    earlier.clear();
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

TYPED_TEST_P(OneClientOfAService, IsServedWhenALaterServiceGoes) {
    this->Register(this->mClient);
    android::sp<typename TestFixture::Service> later = new typename TestFixture::Service;
    later.clear();
    this->Send(this->kEvent);
    EXPECT_THAT(this->mClient->Calls(), testing::ElementsAre(this->kCall));
}

REGISTER_TYPED_TEST_SUITE_P(OneClientOfAService, IsToldNothingOnceMonitoringHasStopped,
                            IsToldNothingOnceTheServiceHasGone, IsServedWhenAnEarlierServiceGoes,
                            IsServedWhenALaterServiceGoes);

}  // namespace hbbtv::test
