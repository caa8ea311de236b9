// The simulator's operations and events against protocol/: it answers exactly the operations that stand there, and
// sends no other events.
#include <gtest/gtest.h>

#include <set>

#include "all_families.h"
#include "core/error.h"
#include "name_difference.h"
#include "wire/protocol.h"

namespace hbbtv::sim {
namespace {

using Names = std::set<std::string>;

class NoSink : public EventSink {
  public:
    void Send(const std::string&, const Json::Value&) override {}
    void SendAndWait(const std::string&, const Json::Value&, std::function<void(const Json::Value&)>) override {}
};

Names NamesIn(const WireFamily& family, const char* list) {
    Names names;
    for (const Json::Value& entry : family.protocol[list]) names.insert(entry["name"].asString());
    return names;
}

class ProtocolTable : public testing::Test {
  protected:
    const Family* Find(const std::string& name) const {
        for (const auto& family : mFamilies) {
            if (family->Address().name == name) return family.get();
        }
        return nullptr;
    }

    EventLoop mLoop;
    StateStore mState{""};
    Tv mTv{DefaultLineUp(), 1, mState};
    Settings mSettings;
    NoSink mSink;
    std::string mDirectory = "/nowhere";
    FamilySetup mSetup{mLoop, mTv, mSettings, [this](const auto&, const auto&) -> EventSink& { return mSink; },
                       mDirectory};
    std::vector<std::unique_ptr<Family>> mFamilies = MakeFamilies(mSetup);
};

TEST_F(ProtocolTable, HasEveryFamilyOnce) {
    Names families;
    for (const auto& family : mFamilies) EXPECT_TRUE(families.insert(family->Address().name).second);
    Names expected;
    for (const WireFamily& family : WireFamilies()) expected.insert(family.name);
    EXPECT_EQ(test::NameDifference(families, expected), "");
    EXPECT_EQ(families.size(), 18u);
}

TEST_F(ProtocolTable, HasARowForEveryOperationAndNoOther) {
    size_t rows = 0;
    for (const WireFamily& wire : WireFamilies()) {
        const Family* family = Find(wire.name);
        ASSERT_NE(family, nullptr) << wire.name;
        Names names;
        for (const auto& entry : family->Operations()) {
            const bool fresh = names.insert(entry.second.name).second;
            EXPECT_TRUE(fresh) << wire.name << "." << entry.second.name << " has two rows";
            ++rows;
        }
        EXPECT_EQ(test::NameDifference(names, NamesIn(wire, "operations")), "") << wire.name;
    }
    EXPECT_EQ(rows, 299u);
}

// Two operations with one code can be told apart: one of them has a member that the other lacks.
TEST_F(ProtocolTable, HasAMarkForOneOfTwoOperationsWithTheSameCode) {
    for (const auto& family : mFamilies) {
        const auto& operations = family->Operations();
        for (auto at = operations.begin(); at != operations.end(); at = operations.upper_bound(at->first)) {
            const auto range = operations.equal_range(at->first);
            size_t unmarked = 0;
            for (auto same = range.first; same != range.second; ++same) unmarked += same->second.mark.empty() ? 1 : 0;
            EXPECT_EQ(unmarked, 1u) << family->Address().name << " " << at->first;
        }
    }
}

TEST_F(ProtocolTable, HasNoEventThatTheProtocolLacks) {
    size_t events = 0;
    for (const WireFamily& wire : WireFamilies()) {
        const Names known = NamesIn(wire, "events");
        for (const auto& event : Find(wire.name)->Events()) {
            EXPECT_EQ(known.count(event.first), 1u) << wire.name << "." << event.first;
            ++events;
        }
        EXPECT_EQ(known.empty(), Find(wire.name)->Address().eventSocket.empty()) << wire.name;
    }
    EXPECT_EQ(events, 47u);
}

class OneRow : public Family {
  public:
    OneRow(const char* family, const char* row) : Family(family) {
        Row(row, [](const Arguments&, Json::Value&) {});
    }
};

class OneEvent : public Family {
  public:
    OneEvent(const FamilySetup& setup, const char* family, const char* event) : Family(family) {
        Sends(setup.makeSink, {event});
    }
};

template <typename Make>
std::string FatalReason(const Make& make) {
    try {
        make();
    } catch (const Fatal& e) {
        return e.what();
    }
    return "";
}

TEST_F(ProtocolTable, ARowOrEventThatTheProtocolLacksEndsTheProgram) {
    EXPECT_EQ(FatalReason([] { OneRow("channel_list", "GetLength"); }), "");
    EXPECT_EQ(FatalReason([] { OneRow("channel_list", "GetLenght"); }),
              "protocol/channel_list.json has no operation \"GetLenght\"; did you mean \"GetLength\"?");
    EXPECT_EQ(FatalReason([] { OneRow("channel_lists", "GetLength"); }),
              "protocol/ has no family \"channel_lists\"; did you mean \"channel_list\"?");
    EXPECT_EQ(FatalReason([&] { OneEvent(mSetup, "search_manager", "State"); }),
              "protocol/search_manager.json has no event \"State\"; did you mean \"state\"?");
}

}  // namespace
}  // namespace hbbtv::sim
