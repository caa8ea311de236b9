// The events of the configuration: how they are read, in all their forms, and who receives them from when to when.

#include "event_rows.h"
#include "ipc/src/plugin/tolm_configuration_adaptor_ipc.h"
#include "lenient_readings.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmConfigurationAdaptorIpc;

// "receiver code" and all members of the record.
void Note(const char* receiver, TolmConfigurationEvent event, const TolmConfigurationEventInfo& info) {
    std::string line = receiver;
    for (const std::string& value :
         {Show(event), Show(info.width), Show(info.height), Show(info.uiLanguage), Show(info.audioLanguage),
          Show(info.subtitleLanguage), Show(info.subtitlesEnabled), Show(info.audioDescriptionEnabled),
          Show(info.hearingImpaired), Show(info.region), Show(info.ratingAge), Show(info.doNotTrackPolicy),
          Show(info.cookiePolicy), Show(info.persistentStorage), Show(info.blockTrackingSites), Show(info.deviceId),
          Show(info.deviceIdTimestamp)}) {
        line += " " + value;
    }
    NoteEvent(line);
}

void First(const TolmConfigurationEvent& event, TolmConfigurationEventInfo info, const void* context) {
    EXPECT_EQ(context, nullptr);
    Note("first", event, info);
}

void Second(const TolmConfigurationEvent& event, TolmConfigurationEventInfo info, const void*) {
    Note("second", event, info);
}

void Asking(const TolmConfigurationEvent& event, TolmConfigurationEventInfo info, const void*) {
    bool enabled = false;
    EXPECT_EQ(Adaptor::GetInstance()->GetSubtitleEnable(enabled), 0);
    Note("asking", event, info);
}

int Register(Receiver receiver) {
    const TolmConfigurationEventCallback functions[] = {nullptr, &First, &Second, &Asking};
    return Adaptor::GetInstance()->RegisterCallback(functions[static_cast<int>(receiver)]);
}

int Unregister() {
    return Adaptor::GetInstance()->UnregisterCallback();
}

const std::vector<std::string> kEvents = {
    "resolution",        "UI language",        "audio language", "subtitle language", "subtitles",
    "audio description", "hearing impaired",   "region",         "rating age",        "do-not-track policy",
    "cookie policy",     "persistent storage", "blocked sites",  "device id",         "device id time stamp",
};

// The record has the members of all events, in their order; those of another event have no value.
std::string Noted(const Json::Value& event, const ShownMembers& shown) {
    std::string line = event["code"].asString();
    for (const std::string& name : kEvents) {
        for (const Json::Value& member : ProtocolEvent(name).Definition()["members"]) {
            const auto value = shown.find(member["key"].asString());
            const std::string none = member["type"] == "string" ? "\"\"" : member["type"] == "bool" ? "false" : "0";
            line += " " + (value != shown.end() ? value->second : none);
        }
    }
    return line;
}

const ProtocolEventRow& RatingAge() {
    static const std::vector<ProtocolEventRow> rows = RowsOf({"rating age"}, &Noted);
    return rows[0];
}

// A record without a value.
#define EMPTY(code) #code R"( 0 0 "" "" "" false false false "" 0 0 0 0 0 0 0)"

const EventRow kForms[] = {
    {"OtherMembers", R"({"event": 8, "age": 16, "region": "DE", "w": 1, "type": 9})",
     R"(8 0 0 "" "" "" false false false "" 16 0 0 0 0 0 0)"},
    {"TextWithAZeroByte", R"({"event": 7, "region": "D\u0000E"})",
     R"(7 0 0 "" "" "" false false false "D\0E" 0 0 0 0 0 0 0)"},
    {"UnknownCode", R"({"event": 15, "age": 16})", EMPTY(15), "5 wrong event type 15"},
    {"NegativeCode", R"({"event": -1, "w": 1, "h": 2})", EMPTY(-1), "5 wrong event type -1"},
    {"GreatestCode", R"({"event": 2147483647})", EMPTY(2147483647), "5 wrong event type 2147483647"},
    {"LeastCode", R"({"event": -2147483648})", EMPTY(-2147483648), "5 wrong event type -2147483648"},
    {"CodeOutOfRange", R"({"event": 2147483648, "w": 7})", R"(0 7 0 "" "" "" false false false "" 0 0 0 0 0 0 0)"},
    {"TextForCode", R"({"event": "8", "age": 16, "h": 7})", R"(0 0 7 "" "" "" false false false "" 0 0 0 0 0 0 0)"},
    {"NullForCode", R"({"event": null})", EMPTY(0)},
    {"NoCode", R"({"age": 16})", EMPTY(0)},
    {"Nothing", "{}", EMPTY(0)},
};

}  // namespace

const EventFamily& EventsUnderTest() {
    static const EventFamily family{[] { Adaptor::GetInstance(); },
                                    &Register,
                                    RatingAge().event,
                                    RatingAge().received,
                                    "5 callback is null",
                                    "Could not be called here",
                                    R"(2 0 0 "" "deu,eng" "" false false false "" 0 0 0 0 0 0 0)"};
    return family;
}

INSTANTIATE_TEST_SUITE_P(Configuration, ProtocolEvents, ::testing::ValuesIn(RowsOf(kEvents, &Noted)),
                         NameOfEventRow<ProtocolEventRow>);
INSTANTIATE_TEST_SUITE_P(Configuration, EventForms, ::testing::ValuesIn(kForms), NameOfEventRow<EventRow>);
INSTANTIATE_TEST_SUITE_P(Configuration, EventMembers, ::testing::ValuesIn(MemberRowsOf(kEvents, &Noted)),
                         NameOfEventRow<EventMemberRow>);
INSTANTIATE_TEST_SUITE_P(Configuration, EndOfEvents, ::testing::Values(EventsEnd{&Unregister}));
INSTANTIATE_TEST_SUITE_P(Configuration, RegistrationRequest,
                         ::testing::Values(EventRequests{"\"method\" : 33,", &Unregister, "\"method\" : 34,"}));
INSTANTIATE_TEST_SUITE_P(Configuration, EndRequest,
                         ::testing::Values(EventRequests{"\"method\" : 33,", &Unregister, "\"method\" : 34,"}));

TEST(ConfigurationEvents, AreThoseOfTheProtocol) {
    ExpectTheProtocolsEvents(kEvents, "event", "onConfigurationEvent");
}

}  // namespace hbbtv::test
