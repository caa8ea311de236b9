// The event of the channel configuration: how it is read, in all its forms, and who receives it from when to when.

#include "event_rows.h"
#include "ipc/src/plugin/tolm_channel_config_adaptor_ipc.h"
#include "lenient_readings.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmChannelConfigAdaptorIpc;

// "receiver code byte context"
void Note(const char* receiver, TolmChannelConfigEvent event, const TolmChannelConfigEventInfo& info,
          const void* context) {
    NoteEvent(std::string(receiver) + " " + Show(event) + " " + Show(static_cast<unsigned char>(info.reserved)) + " " +
              Show(context));
}

void First(const TolmChannelConfigEvent& event, const TolmChannelConfigEventInfo& info, const void* context) {
    Note("first", event, info, context);
}

void Second(const TolmChannelConfigEvent& event, const TolmChannelConfigEventInfo& info, const void* context) {
    Note("second", event, info, context);
}

void Asking(const TolmChannelConfigEvent& event, const TolmChannelConfigEventInfo& info, const void* context) {
    EXPECT_EQ(Adaptor::GetInstance()->SetChannelList(nullptr), 0);
    Note("asking", event, info, context);
}

int Register(Receiver receiver) {
    const TolmChannelConfigEventCallback functions[] = {nullptr, &First, &Second, &Asking};
    return Adaptor::GetInstance()->RegisterCallback(functions[static_cast<int>(receiver)], Pointer(0x80c0ffee));
}

int Unregister() {
    return Adaptor::GetInstance()->UnregisterCallback();
}

const std::vector<std::string> kEvents = {"changed"};

std::string Noted(const Json::Value& event, const ShownMembers& shown) {
    const int byte = shown.at("reserved")[1];  // behind the quote
    return event["code"].asString() + " " + Show(byte) + " 0x80c0ffee";
}

const ProtocolEventRow& Changed() {
    static const std::vector<ProtocolEventRow> rows = RowsOf(kEvents, &Noted);
    return rows[0];
}

constexpr char kEmpty[] = "5 reserved is empty";

const EventRow kForms[] = {
    {"FirstLetterOfMany", R"({"event": 0, "reserved": "Apple"})", "0 65 0x80c0ffee"},
    {"FirstByteOfUtf8", R"({"event": 0, "reserved": "\u00e9"})", "0 195 0x80c0ffee"},
    {"ZeroByteFirst", R"({"event": 0, "reserved": "\u0000A"})", "0 0 0x80c0ffee"},
    {"EmptyText", R"({"event": 0, "reserved": ""})", "0 0 0x80c0ffee", kEmpty},
    {"NoText", R"({"event": 0})", "0 0 0x80c0ffee", kEmpty},
    {"NullText", R"({"event": 0, "reserved": null})", "0 0 0x80c0ffee", kEmpty},
    {"ArrayForText", R"({"event": 0, "reserved": ["A"]})", "0 0 0x80c0ffee", kEmpty},
    {"ObjectForText", R"({"event": 0, "reserved": {"A": "A"}})", "0 0 0x80c0ffee", kEmpty},
    {"NumberForText", R"({"event": 0, "reserved": 7})", "0 55 0x80c0ffee"},
    {"BoolForText", R"({"event": 0, "reserved": true})", "0 116 0x80c0ffee"},
    {"OtherMembers", R"({"event": 0, "reserved": "A", "context": "0x9", "type": 19})", "0 65 0x80c0ffee"},
    {"AnotherCode", R"({"event": 3, "reserved": "A"})", "3 0 0x80c0ffee", "5 wrong event type 3"},
    {"AnotherCodeAlone", R"({"event": 1})", "1 0 0x80c0ffee", "5 wrong event type 1"},
    {"NegativeCode", R"({"event": -1, "reserved": "A"})", "-1 0 0x80c0ffee", "5 wrong event type -1"},
    {"GreatestCode", R"({"event": 2147483647})", "2147483647 0 0x80c0ffee", "5 wrong event type 2147483647"},
    {"LeastCode", R"({"event": -2147483648})", "-2147483648 0 0x80c0ffee", "5 wrong event type -2147483648"},
    {"CodeOutOfRange", R"({"event": 2147483648, "reserved": "A"})", "0 65 0x80c0ffee"},
    {"TextForCode", R"({"event": "3", "reserved": "A"})", "0 65 0x80c0ffee"},
    {"NullForCode", R"({"event": null, "reserved": "A"})", "0 65 0x80c0ffee"},
    {"NoCode", R"({"reserved": "A"})", "0 65 0x80c0ffee"},
    {"Nothing", R"({})", "0 0 0x80c0ffee", kEmpty},
};

}  // namespace

const EventFamily& EventsUnderTest() {
    static const EventFamily family{
        [] { Adaptor::GetInstance(); }, &Register,        Changed().event, Changed().received, "",
        "Could not be called here",     "0 65 0x80c0ffee"};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ChannelConfig, ProtocolEvents, ::testing::ValuesIn(RowsOf(kEvents, &Noted)),
                         NameOfEventRow<ProtocolEventRow>);
INSTANTIATE_TEST_SUITE_P(ChannelConfig, EventForms, ::testing::ValuesIn(kForms), NameOfEventRow<EventRow>);
INSTANTIATE_TEST_SUITE_P(ChannelConfig, EndOfEvents, ::testing::Values(EventsEnd{&Unregister}));
INSTANTIATE_TEST_SUITE_P(ChannelConfig, RegistrationRequest,
                         ::testing::Values(EventRequests{"\"method\" : 0,", &Unregister, "\"method\" : 1,"}));
INSTANTIATE_TEST_SUITE_P(ChannelConfig, EndRequest,
                         ::testing::Values(EventRequests{"\"method\" : 0,", &Unregister, "\"method\" : 1,"}));

TEST(ChannelConfigEvents, AreThoseOfTheProtocol) {
    ExpectTheProtocolsEvents(kEvents, "event", "OnChannelConfigEvent");
}

TEST_F(EventsOfAPlatform, ComeWithTheContextOfTheLastRegistration) {
    Adaptor& adaptor = *Adaptor::GetInstance();
    ASSERT_EQ(adaptor.RegisterCallback(&First, Pointer(7)), 0);
    ASSERT_EQ(adaptor.RegisterCallback(&First, Pointer(0xffffffff)), 0);
    const std::string received = Changed().received.substr(0, Changed().received.rfind(' '));
    EXPECT_EQ(Send({Changed().event}), (std::vector<std::string>{"first " + received + " 0xffffffff"}));
}

TEST_F(Events, NeedNoPlatformThatAnswersToBeginAndEnd) {
    EXPECT_EQ(Register(Receiver::kFirst), -1);
    EXPECT_EQ(Send({Changed().event}), (std::vector<std::string>{"first " + Changed().received}));
    EXPECT_EQ(Unregister(), -1);
    EXPECT_EQ(Send({Changed().event}), std::vector<std::string>{});
}

}  // namespace hbbtv::test
