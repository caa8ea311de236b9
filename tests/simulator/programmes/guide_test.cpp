// Guides with generated and with listed programmes.
#include "television/programmes/guide.h"

#include <gtest/gtest.h>

#include "programmes/walked_guide.h"
#include "television/programmes/listed_guide.h"
#include "television/programmes/schedule.h"

namespace hbbtv::sim {
namespace {

using Texts = std::vector<std::string>;

constexpr std::time_t kDay = 86400;
constexpr std::time_t kSomeDay = 20000 * kDay;

class ListedProgrammes : public testing::Test {
  protected:
    void SetUp() override {
        ProgrammeList programmes;
        for (const std::time_t start : {100, 200, 400}) {
            programmes.push_back(MakeProgramme(mService, {start, start + 100}, static_cast<int>(start)));
            programmes.back()->name = std::to_string(start);
        }
        mGuide.Add(*mService, programmes);
        mGuide.Add(*mOther, {MakeProgramme(mOther, {50, 60}, 1)});
    }

    static Texts Names(const ProgrammeList& programmes) {
        Texts names;
        for (const auto& programme : programmes) names.push_back(programme->name);
        return names;
    }

    std::shared_ptr<Service> mService = std::make_shared<Service>();
    std::shared_ptr<Service> mOther = std::make_shared<Service>();
    ListedGuide mGuide;
};

TEST_F(ListedProgrammes, AreNowAndNextWithGaps) {
    EXPECT_EQ(Names(mGuide.NowAndNext(mService, 0)), (Texts{"100", "200"}));
    EXPECT_EQ(Names(mGuide.NowAndNext(mService, 199)), (Texts{"100", "200"}));
    EXPECT_EQ(Names(mGuide.NowAndNext(mService, 200)), (Texts{"200", "400"}));
    EXPECT_EQ(Names(mGuide.NowAndNext(mService, 300)), Texts{"400"}) << "nothing is on";
    EXPECT_EQ(Names(mGuide.NowAndNext(mService, 500)), Texts());
    EXPECT_EQ(Names(mGuide.NowAndNext(std::make_shared<Service>(), 0)), Texts());
}

TEST_F(ListedProgrammes, AreInARangeWhenTheyAreOnAirWithinIt) {
    EXPECT_EQ(Names(Walked(mGuide, mService, {0, 1000})), (Texts{"100", "200", "400"}));
    EXPECT_EQ(Names(Walked(mGuide, mService, {199, 201})), (Texts{"100", "200"}));
    EXPECT_EQ(Names(Walked(mGuide, mService, {200, 400})), Texts{"200"});
    EXPECT_EQ(Names(Walked(mGuide, mService, {300, 400})), Texts());
    EXPECT_EQ(Names(Walked(mGuide, mService, {400, 100})), Texts());
    EXPECT_EQ(Names(Walked(mGuide, mService, {150, 150})), Texts());
}

TEST_F(ListedProgrammes, AreWalkedThroughUntilTheVisitorHasEnough) {
    ProgrammeList seen;
    mGuide.Walk(mService, {0, 1000}, [&](const std::shared_ptr<Programme>& programme) {
        seen.push_back(programme);
        return programme->name != "200";
    });
    EXPECT_EQ(Names(seen), (Texts{"100", "200"}));
}

TEST_F(ListedProgrammes, AreKnownFromTheFirstToTheLast) {
    EXPECT_EQ(mGuide.Known(0).from, 50);
    EXPECT_EQ(mGuide.Known(0).to, 500);
    EXPECT_EQ(mGuide.Size(), 4u);
}

TEST_F(ListedProgrammes, StayWhereTheyAreWhenClientsSetTheirTimes) {
    mGuide.NowAndNext(mService, 100)[0]->start = 400;
    EXPECT_EQ(Names(mGuide.NowAndNext(mService, 100)), (Texts{"100", "200"}));
}

class MadeUpProgrammes : public testing::Test {
  protected:
    LineUp mLineUp = DefaultLineUp();
    std::shared_ptr<const Service> mService = mLineUp.First();
    Schedule mSchedule{0};
};

TEST_F(MadeUpProgrammes, AreKnownForAWeekAndFromYesterdayOn) {
    const TimeRange known = mSchedule.Known(kSomeDay + 5000);
    EXPECT_EQ(known.from, kSomeDay - kDay);
    EXPECT_EQ(known.to, kSomeDay + 8 * kDay);
}

TEST_F(MadeUpProgrammes, FillADayWithoutGapAndOverlap) {
    for (const auto& service : mLineUp.services) {
        std::time_t end = kSomeDay;
        for (const auto& programme : Walked(mSchedule, service, {kSomeDay, kSomeDay + kDay})) {
            EXPECT_EQ(programme->start, end) << service->name;
            EXPECT_GE(programme->duration, 600);
            EXPECT_FALSE(programme->name.empty());
            end = programme->start + programme->duration;
        }
        EXPECT_EQ(end, kSomeDay + kDay) << service->name;
    }
}

TEST_F(MadeUpProgrammes, RunAtEveryMinuteAndHaveOneThatFollows) {
    for (std::time_t time = kSomeDay; time < kSomeDay + kDay + 7200; time += 60) {
        const ProgrammeList both = mSchedule.NowAndNext(mService, time);
        ASSERT_EQ(both.size(), 2u);
        EXPECT_LE(both[0]->start, time);
        EXPECT_GT(both[0]->start + both[0]->duration, time);
        EXPECT_EQ(both[1]->start, both[0]->start + both[0]->duration);
    }
}

TEST_F(MadeUpProgrammes, AreTheSameForTheSameSeedAndOthersForAnother) {
    const auto names = [&](Schedule& schedule) {
        std::string all;
        for (const auto& programme : Walked(schedule, mService, {kSomeDay, kSomeDay + kDay}))
            all += programme->name + ",";
        return all;
    };
    Schedule same(0);
    Schedule other(1);
    EXPECT_EQ(names(mSchedule), names(same));
    EXPECT_NE(names(mSchedule), names(other));
}

TEST_F(MadeUpProgrammes, HaveIdsThatAreTheirOwnForAMonthAndLonger) {
    std::map<std::string, int> ids;
    const ProgrammeList month = Walked(mSchedule, mService, {kSomeDay, kSomeDay + 60 * kDay});
    ASSERT_GT(month.size(), 60u);
    for (const auto& programme : month) ++ids[programme->id];
    EXPECT_EQ(ids.size(), month.size());
    EXPECT_EQ(month[0]->id, "dvb://1.3fb.283d;1000") << "day 20000 is 32 in 512 days, and 32 << 7 is 1000";
}

TEST_F(MadeUpProgrammes, EndAfterTwoMonthsAndAtTheEndsOfTime) {
    const ProgrammeList all = Walked(mSchedule, mService, {kSomeDay, kLastTime});
    EXPECT_EQ(all.back()->onAir.to, kSomeDay + 62 * kDay);
    EXPECT_EQ(Walked(mSchedule, mService, {INT64_MIN, INT64_MIN + 5}).size(), 0u);
    EXPECT_EQ(Walked(mSchedule, mService, {INT64_MAX - 5, INT64_MAX}).size(), 0u);
    EXPECT_EQ(mSchedule.NowAndNext(mService, -1)[0]->onAir.from, 0);
}

TEST_F(MadeUpProgrammes, ThatSomebodyHoldsOrHasChangedStayTheSameObjects) {
    const auto held = mSchedule.NowAndNext(mService, kSomeDay)[0];
    mSchedule.NowAndNext(mService, kSomeDay + kDay)[0]->changed = true;
    mSchedule.NowAndNext(mService, kSomeDay + kDay)[0]->name = "Mine";
    std::weak_ptr<Programme> unused = mSchedule.NowAndNext(mService, kSomeDay + 2 * kDay)[0];
    ASSERT_FALSE(unused.expired());
    for (int i = 0; i < 70; ++i) {
        Walked(mSchedule, mService, {kSomeDay + (100 + i * 62) * kDay, kSomeDay + (162 + i * 62) * kDay});
    }
    EXPECT_TRUE(unused.expired()) << "4340 days are more than are kept";
    EXPECT_EQ(mSchedule.NowAndNext(mService, kSomeDay)[0], held);
    EXPECT_EQ(mSchedule.NowAndNext(mService, kSomeDay + kDay)[0]->name, "Mine");
}

TEST_F(MadeUpProgrammes, HaveGenresAndSomeOfThemRatings) {
    size_t rated = 0;
    for (const auto& programme : Walked(mSchedule, mService, {kSomeDay, kSomeDay + 7 * kDay})) {
        EXPECT_EQ(programme->genres.size(), 1u);
        EXPECT_EQ(programme->language, "eng");
        if (programme->name == "The Last Ferry") {
            ASSERT_TRUE(programme->ratings);
            EXPECT_EQ(programme->ratings->at(0)->scheme, "dvb-si");
            EXPECT_EQ(programme->ratings->at(0)->value, 16);
            ++rated;
        }
    }
    EXPECT_GT(rated, 0u);
}

TEST(IpProgrammes, HaveACridForTheirId) {
    const auto service = std::make_shared<Service>();
    service->uri = "udp://@239.0.0.1:1234";
    const auto programme = MakeProgramme(service, {0, 60}, 77);
    EXPECT_EQ(programme->id, "crid://iptv.example/udp%3a%2f%2f%40239.0.0.1%3a1234/77");
    EXPECT_EQ(programme->idType, 0);
    EXPECT_EQ(programme->channelId, "ccid:udp://@239.0.0.1:1234");
}

}  // namespace
}  // namespace hbbtv::sim
