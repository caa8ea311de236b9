// A search alone, step by step, in the guide below; and how long a large guide takes.
#include "television/programmes/programme_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "television/programmes/search_runner.h"

namespace hbbtv::sim {
namespace {

using Clock = std::chrono::steady_clock;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kSlower = 30;
#else
constexpr int kSlower = 1;
#endif

class WrittenGuide : public Guide {
  public:
    std::shared_ptr<Service> AddService(int sid) {
        services.push_back(std::make_shared<Service>());
        services.back()->sid = sid;
        return services.back();
    }

    Programme& Add(const std::shared_ptr<Service>& service, const std::string& name, std::time_t start, int duration) {
        ProgrammeList& list = mProgrammes[service.get()];
        list.push_back(MakeProgramme(service, {start, start + duration}, static_cast<int>(list.size())));
        list.back()->name = name;
        return *list.back();
    }

    void Walk(const std::shared_ptr<const Service>& service, TimeRange range, const Visitor& visit) override {
        const ProgrammeList& list = mProgrammes[service.get()];
        auto programme = std::partition_point(list.begin(), list.end(),
                                              [&](const auto& one) { return one->onAir.to <= range.from; });
        for (; programme != list.end() && (*programme)->onAir.from < range.to; ++programme) {
            ++visits;
            if (!visit(*programme)) return;
        }
    }

    TimeRange Known(std::time_t) const override { return {0, kLastTime}; }

    std::vector<std::shared_ptr<Service>> services;
    int visits = 0;

  private:
    std::map<const Service*, ProgrammeList> mProgrammes;
};

class Searching : public testing::Test {
  protected:
    Searching() {
        const auto one = mGuide.AddService(1);
        const auto two = mGuide.AddService(2);
        mGuide.AddService(3);
        mGuide.Add(one, "a1", 100, 50);
        mGuide.Add(one, "b2", 150, 50);
        mGuide.Add(one, "a3", 200, 100);
        mGuide.Add(two, "a4", 90, 20);
        mGuide.Add(two, "b5", 110, 40);
        mGuide.Add(two, "a6", 150, 10);
    }

    std::unique_ptr<ProgrammeSearch> New(unsigned target = 1) {
        const auto listed = [this] {
            return ProgrammeSearch::Services(mGuide.services.begin(), mGuide.services.end());
        };
        auto search = std::make_unique<ProgrammeSearch>(mGuide, mRoom, listed, target);
        search->changed.Watch([this](SearchEvent event) { mEvents.push_back(static_cast<int>(event)); });
        return search;
    }

    static ProgrammeQuery::Shared Named(const std::string& part) { return Compare("Programme.name", 6, part); }

    static void Finish(ProgrammeSearch& search) {
        while (search.State() == SearchState::Searching) search.Step(Clock::now() + std::chrono::milliseconds(5));
    }

    static std::string Page(const ProgrammeSearch& search) {
        std::string page;
        for (size_t i = 0; i < search.Length(); ++i) page += (i == 0 ? "" : " ") + search.Item(i)->name;
        return page;
    }

    std::string Found(ProgrammeSearch& search, size_t offset = 0, size_t count = 100) {
        search.Ask(offset, count, 0);
        Finish(search);
        return Page(search);
    }

    WrittenGuide mGuide;
    ResultRoom mRoom;
    std::vector<int> mEvents;
};

TEST_F(Searching, FindsInTheOrderOfTimeAndThenOfTheServices) {
    const auto search = New();
    search->SetQuery(Named("a"));
    EXPECT_EQ(search->State(), SearchState::Idle);
    EXPECT_EQ(Found(*search), "a4 a1 a6 a3");
    EXPECT_EQ(search->State(), SearchState::Found);
    EXPECT_EQ(mEvents, (std::vector<int>{0}));
    search->RemoveConstraints();
    search->SetQuery(nullptr);
    EXPECT_EQ(Found(*search), "a4 a1 b5 b2 a6 a3") << "without a query every programme fits";
}

TEST_F(Searching, GoesOnWhereItStoppedHoweverShortTheStepsAre) {
    const auto search = New();
    search->SetQuery(Named("a"));
    search->Ask(0, 10, 0);
    int steps = 0;
    for (; search->State() == SearchState::Searching; ++steps) {
        ASSERT_LT(steps, 100);
        EXPECT_EQ(search->Length(), 0u) << "nothing is shown before the end";
        EXPECT_TRUE(mEvents.empty());
        search->Step(Clock::now() + std::chrono::microseconds(1));
    }
    EXPECT_EQ(Page(*search), "a4 a1 a6 a3");
    EXPECT_EQ(mEvents, (std::vector<int>{0}));
}

TEST_F(Searching, ShowsPagesOfTheSameResultWithoutSearchingAgain) {
    const auto search = New();
    search->SetQuery(Named("a"));
    EXPECT_EQ(Found(*search, 0, 3), "a4 a1 a6");
    EXPECT_EQ(search->Total(), 4u);
    const int visits = mGuide.visits;
    EXPECT_EQ(Found(*search, 3, 3), "a3");
    EXPECT_EQ(search->Offset(), 3u);
    EXPECT_EQ(Found(*search, 4, 3), "");
    EXPECT_EQ(Found(*search, 4294967295u, 4294967295u), "");
    EXPECT_EQ(search->Offset(), 4294967295u);
    EXPECT_EQ(Found(*search, 1, 4294967295u), "a1 a6 a3");
    EXPECT_EQ(Found(*search, 0, 0), "");
    EXPECT_EQ(search->Total(), 4u);
    EXPECT_EQ(mGuide.visits, visits);
    EXPECT_EQ(mEvents, (std::vector<int>{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(search->Item(0), nullptr);
    EXPECT_EQ(search->Item(SIZE_MAX), nullptr);
}

TEST_F(Searching, KeepsToItsConstraints) {
    const auto search = New();
    search->SetQuery(Named("a"));
    search->AddConstraint(mGuide.services[1]);
    EXPECT_EQ(Found(*search), "a4 a6");
    search->AddConstraint(mGuide.services[0]);
    search->AddConstraint(mGuide.services[1]);
    EXPECT_EQ(Found(*search), "a4 a1 a6 a3") << "each once";
    search->SetQuery(Named("b"));
    EXPECT_EQ(Found(*search), "b5 b2") << "a new query takes the constraints away";
    search->AddConstraint(nullptr);
    EXPECT_EQ(Found(*search), "") << "on a channel that is not on air nothing is";
    search->RemoveConstraints();
    EXPECT_EQ(Found(*search), "b5 b2");
}

TEST_F(Searching, FindsTheProgrammesOfOneServiceFromATimeOn) {
    const auto search = New();
    search->SetQuery(Named("nothing"));
    const auto found = [&](const std::shared_ptr<Service>& service, std::time_t time, unsigned count) {
        search->FindFrom(service, time, count);
        return Found(*search);
    };
    const auto one = mGuide.services[0];
    EXPECT_EQ(found(one, 149, 2), "a1 b2") << "also the one that runs at that time";
    EXPECT_EQ(found(one, 150, 10), "b2 a3");
    EXPECT_EQ(found(one, 0, 1), "a1");
    EXPECT_EQ(found(one, 300, 10), "") << "it ended at that time";
    EXPECT_EQ(found(one, 0, 0), "");
    EXPECT_EQ(found(one, 4294967295, 10), "");
    EXPECT_EQ(found(nullptr, 0, 10), "");
}

TEST_F(Searching, IsIdleAgainWhenWhatIsLookedForChanges) {
    const auto search = New();
    search->SetQuery(Named("a"));
    search->AddConstraint(mGuide.services[0]);
    EXPECT_TRUE(mEvents.empty()) << "what is idle does not become idle";
    const std::vector<std::function<void()>> changes{
        [&] { search->SetQuery(Named("b")); }, [&] { search->AddConstraint(mGuide.services[1]); },
        [&] { search->RemoveConstraints(); }, [&] { search->FindFrom(mGuide.services[0], 0, 5); },
        [&] { search->Abort(); }};
    for (size_t i = 0; i < changes.size(); ++i) {
        search->Ask(0, 10, 0);
        mEvents.clear();
        changes[i]();
        EXPECT_EQ(mEvents, (std::vector<int>{3})) << "while searching, change " << i;
        EXPECT_EQ(search->State(), SearchState::Idle);
        search->Step(Clock::now() + std::chrono::seconds(1));
        EXPECT_EQ(mEvents.size(), 1u) << "what has ended does not go on";
        EXPECT_NE(Found(*search), "");
        mEvents.clear();
        changes[i]();
        EXPECT_EQ(mEvents, (std::vector<int>{3})) << "when found, change " << i;
        EXPECT_EQ(search->Total(), 0u);
        EXPECT_EQ(search->Item(0), nullptr);
    }
    search->Abort();
    EXPECT_EQ(mEvents.size(), 1u);
    EXPECT_EQ(Found(*search), "a4 a1 b5 b2 a6 a3") << "after Abort nothing is left of what was looked for";
}

TEST_F(Searching, ReturnsTheLastRequestedPageAndReportsOnce) {
    const auto search = New();
    search->SetQuery(Named("a"));
    search->Ask(0, 1, 0);
    search->Ask(2, 1, 0);
    Finish(*search);
    EXPECT_EQ(Page(*search), "a6");
    EXPECT_EQ(mEvents, (std::vector<int>{0}));
}

TEST_F(Searching, FindsNothingOnDemand) {
    EXPECT_EQ(Found(*New(2)), "");
    EXPECT_EQ(Found(*New(3)), "a4 a1 b5 b2 a6 a3");
}

class LargeGuide : public Searching {
  protected:
    LargeGuide() {
        for (int service = 0; service < 10; ++service) {
            const auto added = mGuide.AddService(100 + service);
            for (int i = 0; i < 10000; ++i) {
                const std::string name = "Programme " + std::to_string(i) + " of " + std::to_string(service);
                Programme& programme = mGuide.Add(added, name, i * 60, 60);
                programme.longDescription = std::string(200, 'x') + (i == 7777 ? " Needle." : " Hay.");
            }
        }
    }
};

TEST_F(LargeGuide, OfAHundredThousandProgrammesIsSearchedWithinASecondInShortSteps) {
    const auto search = New();
    search->SetQuery(Compare("Programme.longDescription", 6, "nEEdle"));
    search->Ask(0, 100, 0);
    const auto start = Clock::now();
    auto longest = Clock::duration::zero();
    while (search->State() == SearchState::Searching) {
        const auto before = Clock::now();
        search->Step(before + std::chrono::milliseconds(5));
        longest = std::max(longest, Clock::now() - before);
    }
    EXPECT_LT(Clock::now() - start, kSlower * std::chrono::seconds(1));
    EXPECT_LT(longest, kSlower * std::chrono::milliseconds(250)) << "the machine may be busy; the step asks for 5ms";
    EXPECT_EQ(search->Total(), 10u);
    EXPECT_EQ(search->Item(0)->name, "Programme 7777 of 0");
    EXPECT_EQ(search->Item(9)->name, "Programme 7777 of 9");
}

TEST_F(LargeGuide, ReturnsNoMoreResultsThanTheWireCanExpress) {
    const auto search = New();
    search->Ask(65530, 4294967295u, 0);
    Finish(*search);
    EXPECT_EQ(search->Total(), 65536u);
    EXPECT_EQ(search->Length(), 6u);
}

TEST_F(LargeGuide, HasNoResourcesForAMillionResults) {
    std::vector<std::unique_ptr<ProgrammeSearch>> searches;
    for (int i = 0; i < 15; ++i) {
        searches.push_back(New());
        EXPECT_NE(Found(*searches.back()), "") << i;
    }
    mEvents.clear();
    const auto oneTooMany = New();
    EXPECT_EQ(Found(*oneTooMany), "") << "16 times 65536 is more";
    EXPECT_EQ(mEvents, (std::vector<int>{4}));
    EXPECT_EQ(oneTooMany->State(), SearchState::Idle);
    searches.pop_back();
    EXPECT_NE(Found(*oneTooMany), "") << "those of a search that is gone make room";
}

TEST_F(Searching, TakesTurnsWithOthersAndWithTheRestOfTheTelevision) {
    EventLoop loop;
    SearchRunner runner(loop);
    std::vector<std::shared_ptr<ProgrammeSearch>> searches;
    for (int i = 0; i < 21; ++i) {
        searches.push_back(New());
        searches.back()->Ask(0, 10, 0);
        runner.Run(searches.back());
    }
    EXPECT_EQ(mEvents, (std::vector<int>{4})) << "twenty are enough";
    EXPECT_EQ(searches[20]->State(), SearchState::Idle);
    searches[0]->Abort();
    searches[1].reset();
    bool between = false;
    loop.Post([&] { between = searches[19]->State() == SearchState::Searching; });
    mEvents.clear();
    searches[19]->changed.Watch([&](SearchEvent) { loop.Stop(); });
    loop.Run();
    EXPECT_TRUE(between);
    EXPECT_EQ(mEvents, std::vector<int>(18, 0)) << "all but the first and the second";
}

}  // namespace
}  // namespace hbbtv::sim
