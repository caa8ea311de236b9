// The event of searches: how it is read, in all its forms, and who receives it from when to when.

#include "event_rows.h"
#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"
#include "lenient_readings.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmSearchManagerAdaptor;

// "receiver code state search context"
void Note(const char* receiver, TolmSearchManagerEvent event, const TolmSearchManagerEventInfo& info,
          const void* context) {
    NoteEvent(std::string(receiver) + " " + Show(event) + " " + Show(info.state) + " " +
              Show(static_cast<const void*>(info.searchHandle)) + " " + Show(context));
}

void First(const TolmSearchManagerEvent& event, const TolmSearchManagerEventInfo& info, const void* context) {
    Note("first", event, info, context);
}

void Second(const TolmSearchManagerEvent& event, const TolmSearchManagerEventInfo& info, const void* context) {
    Note("second", event, info, context);
}

void Asking(const TolmSearchManagerEvent& event, const TolmSearchManagerEventInfo& info, const void* context) {
    unsigned length = 0;
    EXPECT_EQ(Adaptor::GetInstance()->SearchResults_GetLength(nullptr, length), 0);
    Note("asking", event, info, context);
}

int Register(Receiver receiver) {
    const TolmSearchManagerEventCallback functions[] = {nullptr, &First, &Second, &Asking};
    return Adaptor::GetInstance()->SearchManager_RegisterCallback(Pointer(1), functions[static_cast<int>(receiver)],
                                                                  Pointer(0x80c0ffee));
}

const std::vector<std::string> kEvents = {"state"};

std::string Noted(const Json::Value& event, const ShownMembers& shown) {
    return event["code"].asString() + " " + shown.at("state") + " " + shown.at("searchHandle") + " 0x80c0ffee";
}

const ProtocolEventRow& State() {
    static const std::vector<ProtocolEventRow> rows = RowsOf(kEvents, &Noted);
    return rows[0];
}

const EventRow kForms[] = {
    {"StateAlone", R"({"event": 0, "state": 2})", "0 2 0x0 0x80c0ffee"},
    {"SearchAlone", R"({"event": 0, "searchHandle": "0xffffffff"})", "0 0 0xffffffff 0x80c0ffee"},
    {"NeitherOfThem", R"({"event": 0})", "0 0 0x0 0x80c0ffee"},
    {"OtherMembers", R"({"event": 0, "state": 4, "context": "0x9", "type": 0})", "0 4 0x0 0x80c0ffee"},
    {"AnotherCode", R"({"event": 3, "state": 2, "searchHandle": "0x9d20"})", "3 0 0x0 0x80c0ffee",
     "5 wrong event type 3"},
    {"NegativeCode", R"({"event": -1, "state": 2})", "-1 0 0x0 0x80c0ffee", "5 wrong event type -1"},
    {"GreatestCode", R"({"event": 2147483647})", "2147483647 0 0x0 0x80c0ffee", "5 wrong event type 2147483647"},
    {"LeastCode", R"({"event": -2147483648})", "-2147483648 0 0x0 0x80c0ffee", "5 wrong event type -2147483648"},
    {"CodeOutOfRange", R"({"event": 2147483648, "state": 2})", "0 2 0x0 0x80c0ffee"},
    {"TextForCode", R"({"event": "3", "state": 2})", "0 2 0x0 0x80c0ffee"},
    {"NullForCode", R"({"event": null, "state": 2})", "0 2 0x0 0x80c0ffee"},
    {"NoCode", R"({"state": 2})", "0 2 0x0 0x80c0ffee"},
    {"Nothing", "{}", "0 0 0x0 0x80c0ffee"},
};

}  // namespace

const EventFamily& EventsUnderTest() {
    static const EventFamily family{
        [] { Adaptor::GetInstance(); }, &Register, State().event, State().received, "", "Should not be called here",
        "0 0 0x9d20 0x80c0ffee"};
    return family;
}

INSTANTIATE_TEST_SUITE_P(SearchManager, ProtocolEvents, ::testing::ValuesIn(RowsOf(kEvents, &Noted)),
                         NameOfEventRow<ProtocolEventRow>);
INSTANTIATE_TEST_SUITE_P(SearchManager, EventForms, ::testing::ValuesIn(kForms), NameOfEventRow<EventRow>);
INSTANTIATE_TEST_SUITE_P(SearchManager, EventMembers, ::testing::ValuesIn(MemberRowsOf(kEvents, &Noted, "0x0")),
                         NameOfEventRow<EventMemberRow>);
INSTANTIATE_TEST_SUITE_P(SearchManager, RegistrationRequest,
                         ::testing::Values(EventRequests{"\"method\" : 4,", nullptr, nullptr}));

TEST(SearchManagerEvents, AreThoseOfTheProtocol) {
    ExpectTheProtocolsEvents(kEvents, "event", "OnSearchManagerEvent");
}

TEST_F(EventsOfAPlatform, ComeWithTheContextOfTheLastRegistration) {
    Adaptor& adaptor = *Adaptor::GetInstance();
    ASSERT_EQ(adaptor.SearchManager_RegisterCallback(Pointer(1), &First, Pointer(7)), 0);
    ASSERT_EQ(adaptor.SearchManager_RegisterCallback(Pointer(2), &First, nullptr), 0);
    const std::string received = State().received.substr(0, State().received.rfind(' '));
    EXPECT_EQ(Send({State().event}), (std::vector<std::string>{"first " + received + " 0x0"}));
}

TEST_F(EventsOfAPlatform, StandBetweenEnterAndLeaveInTheLog) {
    const std::string events[] = {State().event, R"({"event": 3})"};
    for (const Receiver receiver : {Receiver::kNone, Receiver::kFirst}) {
        ASSERT_EQ(Register(receiver), 0);
        for (const std::string& event : events) {
            mLog.Clear();
            Send({event});
            std::vector<std::string> lines;
            for (const LogLine& line : mLog.Lines()) {
                if (line.function == "ReceiveIpc" && line.priority == 2) lines.push_back(line.message);
            }
            EXPECT_EQ(lines, (std::vector<std::string>{"ENTER", "LEAVE"})) << mLog.Text();
        }
    }
}

}  // namespace hbbtv::test
