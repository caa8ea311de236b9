// The event of AV control: how it is read, in all its forms, and who receives it from when to when.

#include "event_rows.h"
#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"
#include "lenient_readings.h"
#include "rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmAVControlAdaptorIpc;

// "receiver code kind index". What is given back is not looked at.
TOLM_ERR Note(const char* receiver, TolmPluginIPCAvContrl event, TolmHbbtvAVComponentType type, int index) {
    NoteEvent(std::string(receiver) + " " + Show(event) + " " + Show(type) + " " + Show(index));
    return -1;
}

TOLM_ERR First(TolmPluginIPCAvContrl event, TolmHbbtvAVComponentType type, int index) {
    return Note("first", event, type, index);
}

TOLM_ERR Second(TolmPluginIPCAvContrl event, TolmHbbtvAVComponentType type, int index) {
    return Note("second", event, type, index);
}

TOLM_ERR Asking(TolmPluginIPCAvContrl event, TolmHbbtvAVComponentType type, int index) {
    std::vector<TolmAVCtrlComponentData> components;
    EXPECT_EQ(Adaptor::GetInstance()->ComponentUpdate(0, {type}, components, index), 0);
    return Note("asking", event, type, index);
}

int Register(Receiver receiver) {
    const TolmAVControlCallback functions[] = {nullptr, &First, &Second, &Asking};
    return Adaptor::GetInstance()->RegisterCallback(functions[static_cast<int>(receiver)]);
}

int Unregister() {
    return Adaptor::GetInstance()->UnregisterCallback();
}

const std::vector<std::string> kEvents = {"select"};

std::string Noted(const Json::Value& event, const ShownMembers& shown) {
    return event["code"].asString() + " " + shown.at("component_type") + " " + shown.at("component_index");
}

const ProtocolEventRow& Selected() {
    static const std::vector<ProtocolEventRow> rows = RowsOf(kEvents, &Noted);
    return rows[0];
}

const EventRow kForms[] = {
    {"KindAlone", R"({"method": 1, "component_type": 2})", "1 2 0"},
    {"IndexAlone", R"({"method": 1, "component_index": -5})", "1 0 -5"},
    {"NeitherOfThem", R"({"method": 1})", "1 0 0"},
    {"OtherMembers", R"({"method": 1, "component_type": 2, "component_index": 5, "event": 0, "type": 2})", "1 2 5"},
    {"AnotherCode", R"({"method": 2, "component_type": 2, "component_index": 5})", nullptr, "5 wrong event type 2"},
    {"CodeOfTheRequest", R"({"method": 0, "component_type": 2})", nullptr, "5 wrong event type 0"},
    {"NegativeCode", R"({"method": -1})", nullptr, "5 wrong event type -1"},
    {"GreatestCode", R"({"method": 2147483647})", nullptr, "5 wrong event type 2147483647"},
    {"LeastCode", R"({"method": -2147483648})", nullptr, "5 wrong event type -2147483648"},
    {"CodeOutOfRange", R"({"method": 4294967297})", nullptr, "5 wrong event type 0"},
    {"TextForCode", R"({"method": "1"})", nullptr, "5 wrong event type 0"},
    {"TrueForCode", R"({"method": true, "component_index": 5})", "1 0 5"},
    {"NullForCode", R"({"method": null})", nullptr, "5 wrong event type 0"},
    {"NoCode", R"({"event": 1, "component_type": 2})", nullptr, "5 wrong event type 0"},
    {"Nothing", "{}", nullptr, "5 wrong event type 0"},
};

}  // namespace

const EventFamily& EventsUnderTest() {
    static const EventFamily family{
        [] { Adaptor::GetInstance(); }, &Register, Selected().event, Selected().received, "3 callback is null",
        "Could not be called here",     "1 1 1"};
    return family;
}

INSTANTIATE_TEST_SUITE_P(AVControl, ProtocolEvents, ::testing::ValuesIn(RowsOf(kEvents, &Noted)),
                         NameOfEventRow<ProtocolEventRow>);
INSTANTIATE_TEST_SUITE_P(AVControl, EventForms, ::testing::ValuesIn(kForms), NameOfEventRow<EventRow>);
INSTANTIATE_TEST_SUITE_P(AVControl, EventMembers, ::testing::ValuesIn(MemberRowsOf(kEvents, &Noted)),
                         NameOfEventRow<EventMemberRow>);
INSTANTIATE_TEST_SUITE_P(AVControl, EndOfEvents, ::testing::Values(EventsEnd{&Unregister}));

TEST(AVControlEvents, AreThoseOfTheProtocol) {
    ExpectTheProtocolsEvents(kEvents, "method", "onComponentSelect");
}

TEST_F(Events, AreRegisteredWithoutARequest) {
    // There is no receiver to call, and that is not a failure.
    EXPECT_EQ(Register(Receiver::kFirst), 0);
    EXPECT_EQ(Send({Selected().event}), (std::vector<std::string>{"first " + Selected().received}));
    EXPECT_EQ(Unregister(), 0);
    EXPECT_EQ(Send({Selected().event}), std::vector<std::string>{});
    FakePlatform platform(UnderTest().Socket(), "{\"ret\": 0}");
    EXPECT_EQ(Register(Receiver::kFirst), 0);
    EXPECT_EQ(Unregister(), 0);
    EXPECT_EQ(platform.Connections(), 0);
}

}  // namespace hbbtv::test
