// Every row of the state table of the video/broadcast object, with its events in order. State numbers: 0 unrealized,
// 1 connecting, 2 presenting, 3 stopped. Values and rows are those of OIPF DAE volume 5.
#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

constexpr int kSame = -1;  // what it was before

struct Row {
    const char* name;
    std::string from;     // the states in which the row holds
    std::string actions;  // see Do()
    std::string events;
    int state = kSame;
    int channel = kSame;  // 1.1.<channel> is the current one, 0 for none
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

std::vector<std::string> Parts(const std::string& list) {
    std::vector<std::string> parts;
    for (size_t begin = 0; begin < list.size();) {
        const size_t end = std::min(list.find(", ", begin), list.size());
        parts.push_back(list.substr(begin, end - begin));
        begin = end + 2;
    }
    return parts;
}

class StateTable : public VideoBroadcastFixture, public testing::WithParamInterface<Row> {
  protected:
    void SetUp() override { Start(); }

    // Carries out "tell COMMAND", "tune SID", "SetChannel SID", "SetChannel null", or an operation without members.
    void Do(const std::string& vb, const std::string& action) {
        const std::string verb = action.substr(0, action.find(' '));
        const std::string rest = action.substr(std::min(action.size(), verb.size() + 1));
        if (verb == "tell") {
            EXPECT_EQ(Tell(rest).substr(0, 2), "ok");
        } else if (verb == "tune") {
            Tune(vb, std::stoi(rest));
        } else if (verb == "SetChannel") {
            EXPECT_EQ(SetChannel(vb, rest == "null" ? "" : Channel(vb, std::stoi(rest))), 0);
        } else if (verb == "BindToCurrentChannel") {
            const std::string bound = HandleOf(vb, verb);
            EXPECT_EQ(bound, CurrentChannel(vb));
        } else {
            EXPECT_EQ(RetOf(vb, verb), 0);
        }
    }
};

TEST_P(StateTable, Holds) {
    const Row& row = GetParam();
    for (const std::string& from : Parts(row.from)) {
        SCOPED_TRACE(from);
        const std::string vb = ObjectIn(from);
        for (const int sid : {1, 2, 3, 4, 5, 9}) Channel(vb, sid);
        const int stateBefore = State(vb);
        const std::string channelBefore = CurrentChannel(vb);
        for (const std::string& action : Parts(row.actions)) Do(vb, action);
        for (const std::string& event : Parts(row.events)) EXPECT_EQ(NextEvent(), event);
        EXPECT_EQ(EventsSoFar(vb), Events{});
        EXPECT_EQ(State(vb), row.state == kSame ? stateBefore : row.state);
        const std::string channel = row.channel > 0 ? Channel(vb, row.channel) : "";
        EXPECT_EQ(CurrentChannel(vb), row.channel == kSame ? channelBefore : channel);
        Restart();
    }
}

const char* const kAny = "unrealized, connecting, presenting, stopped";
const char* const kTuned = "connecting, presenting, stopped";
const char* const kWatched = "presenting, stopped";
const char* const kToOne = "PlayState 1 0, ChannelChanged One 0, PlayState 2 0";
const char* const kToTwo = "PlayState 1 0, ChannelChanged Two 0, PlayState 2 0";

// A "connecting" object is on Locked, the last one of the list, and waits for the PIN; the others are on One.
const Row kRows[] = {
    {"SetChannelConnectsAndThenPresents", kAny, "SetChannel 2", kToTwo, 2, 2},
    {"SetChannelToAnUnknownServiceOnlyReportsError5", kAny, "SetChannel 77", "ChannelError Unknown 5"},
    {"SetChannelWithoutAFreeTunerOnlyReportsError2", kAny, "tell tuner taken, SetChannel 2", "ChannelError Two 2"},
    {"AZapOfTheViewerDoesWhatSetChannelDoes", kAny, "tell zap 2", kToTwo, 2, 2},
    {"SetChannelWithTheNullChannelIsRelease", kTuned, "SetChannel null", "PlayState 0 0", 0, 0},
    {"ReleaseLeadsToUnrealized", kTuned, "Release", "PlayState 0 0", 0, 0},
    {"StopLeadsToStoppedAndKeepsTheChannel", "connecting, presenting", "Stop", "PlayState 3 0", 3},

    {"NextChannelConnectsToTheNeighbour", kWatched, "NextChannel", kToTwo, 2, 2},
    {"NextChannelFromTheLastConnectsToTheFirst", "connecting", "NextChannel", kToOne, 2, 1},
    {"NextAndPreviousWithoutAFreeTunerOnlyReportError2", kWatched, "tell tuner taken, NextChannel, PrevChannel",
     "ChannelError Two 2, ChannelError Locked 2"},
    {"NextAndPreviousFromTheLastWithoutAFreeTunerOnlyReportError2", "connecting",
     "tell tuner taken, NextChannel, PrevChannel", "ChannelError One 2, ChannelError Dark 2"},
    {"NextFromUnrealizedReportsError10", "unrealized", "NextChannel", "ChannelError none 10"},
    {"NextFromAServiceOutsideTheListOnlyReportsError10", "presenting", "tune 9, NextChannel, PrevChannel",
     "ChannelError none 10, ChannelError none 10", 2, 9},
    {"NextWhileStoppedOnAServiceOutsideTheListOnlyReportsError10", "presenting",
     "tune 9, Stop, NextChannel, PrevChannel", "PlayState 3 0, ChannelError none 10, ChannelError none 10", 3, 9},
    {"NextWhileConnectingToAServiceOutsideTheListLeadsToUnrealized", "presenting",
     "tune 9, tell signal lost, NextChannel", "PlayState 1 1, ChannelError none 10, PlayState 0 10", 0, 0},

    {"BindFromUnrealizedPresentsAtOnceWhatIsOn", "unrealized", "BindToCurrentChannel", "PlayState 2 0", 2, 1},
    {"BindFromUnrealizedWithoutResourcesStaysUnrealizedWithAnError", "unrealized",
     "tell tuner taken, BindToCurrentChannel", "PlayState 0 11", 0, 0},
    {"BindFromStoppedConnects", "stopped", "BindToCurrentChannel", kToOne, 2, 1},

    {"ConnectingToALockedChannelStaysConnecting", "unrealized", "SetChannel 5",
     "PlayState 1 0, ChannelChanged Locked 0, PlayState 1 3", 1, 5},
    {"ThePinPresentsALockedChannel", "connecting", "tell parental-lock pin", "PlayState 2 0", 2, 5},
    {"AParentalLockWhilePresentingLeadsToConnecting", "presenting", "tell parental-lock on", "PlayState 1 3", 1},
    {"APassingDisturbanceLeadsToConnecting", "presenting", "tell signal lost", "PlayState 1 1", 1},
    {"APassingDisturbanceLeadsBackToPresenting", "presenting", "tell signal lost, tell signal back",
     "PlayState 1 1, PlayState 2 0"},
    {"AScrambledChannelEndsUnrealizedWithError4", "unrealized", "SetChannel 3",
     "PlayState 1 0, ChannelError Scrambled 4, PlayState 0 4", 0, 0},
    {"AChannelWithoutSignalEndsUnrealizedWithError1", "unrealized", "SetChannel 4",
     "PlayState 1 0, ChannelError Dark 1, PlayState 0 1", 0, 0},
    {"APermanentErrorLeadsToUnrealizedWithTheErrorInPlayState", kWatched, "tell fail 1", "PlayState 0 1", 0, 0},

    {"StopAndReleaseOfAnUnrealizedObjectChangeNothing", "unrealized", "Stop, Release", "", 0, 0},
    {"StopOfAStoppedObjectChangesNothing", "stopped", "Stop", "", 3, 1},
    {"BindOfAPresentingObjectChangesNothing", "presenting", "BindToCurrentChannel", "", 2, 1}};

std::string RowName(const testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Row, StateTable, testing::ValuesIn(kRows), RowName);

using StateTableWithOptions = VideoBroadcastFixture;

TEST_F(StateTableWithOptions, SetChannelOfATypeThatTheTunerDoesNotHaveReportsError0) {
    Start();
    const std::string vb = ObjectIn("presenting");
    const std::string created = CreateChannel(vb, 22, 1, 1, 1);
    EXPECT_EQ(SetChannel(vb, created), 0);
    EXPECT_EQ(NextEvent(), "ChannelError ?" + created + " 0");
    EXPECT_EQ(State(vb), 2);
}

TEST_F(StateTableWithOptions, BindFromUnrealizedToAScrambledChannelStaysUnrealizedWithError4) {
    Start();
    ASSERT_EQ(Tell("zap 3"), "ok Scrambled");
    const std::string vb = ObjectIn("unrealized");
    EXPECT_EQ(HandleOf(vb, "BindToCurrentChannel"), "");
    EXPECT_EQ(EventsSoFar(vb), Events{"PlayState 0 4"});
}

TEST_F(StateTableWithOptions, ThePermanentErrorOptionPutsChannelChangedInFrontOfPlayState) {
    Start({"--permanent-error", "channel-changed"});
    const std::string vb = NewObject();
    EXPECT_EQ(SetChannel(vb, Channel(vb, 3)), 0);
    EXPECT_EQ(EventsUntil("PlayState 0 4"), (Events{"PlayState 1 0", "ChannelChanged Scrambled 0", "PlayState 0 4"}));
}

}  // namespace
}  // namespace hbbtv::test
