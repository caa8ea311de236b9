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

const ProtocolEventRow kProtocol[] = {
    {"Resolution", R"({"event": 0, "w": 3840, "h": 2160})",
     R"(0 3840 2160 "" "" "" false false false "" 0 0 0 0 0 0 0)"},
    {"UiLanguage", R"({"event": 1, "uiLang": "deu,eng"})",
     R"(1 0 0 "deu,eng" "" "" false false false "" 0 0 0 0 0 0 0)"},
    {"AudioLanguage", R"({"event": 2, "audLang": "fra"})", R"(2 0 0 "" "fra" "" false false false "" 0 0 0 0 0 0 0)"},
    {"SubtitleLanguage", R"({"event": 3, "prefSubLang": "***"})",
     R"(3 0 0 "" "" "***" false false false "" 0 0 0 0 0 0 0)"},
    {"Subtitles", R"({"event": 4, "isSubEnabled": true})", R"(4 0 0 "" "" "" true false false "" 0 0 0 0 0 0 0)"},
    {"AudioDescription", R"({"event": 5, "isADEnabled": true})", R"(5 0 0 "" "" "" false true false "" 0 0 0 0 0 0 0)"},
    {"HearingImpaired", R"({"event": 6, "aud_hearing_imp": true})",
     R"(6 0 0 "" "" "" false false true "" 0 0 0 0 0 0 0)"},
    {"Region", R"({"event": 7, "region": "DE"})", R"(7 0 0 "" "" "" false false false "DE" 0 0 0 0 0 0 0)"},
    {"RatingAge", R"({"event": 8, "age": 16})", R"(8 0 0 "" "" "" false false false "" 16 0 0 0 0 0 0)"},
    {"DoNotTrackPolicy", R"({"event": 9, "do_not_track_policy": 1})",
     R"(9 0 0 "" "" "" false false false "" 0 1 0 0 0 0 0)"},
    {"CookiePolicy", R"({"event": 10, "cookie_policy": 2})", R"(10 0 0 "" "" "" false false false "" 0 0 2 0 0 0 0)"},
    {"PersistentStorage", R"({"event": 11, "persistent_storage": 3})",
     R"(11 0 0 "" "" "" false false false "" 0 0 0 3 0 0 0)"},
    {"BlockTrackingSites", R"({"event": 12, "block_track_sites": 4})",
     R"(12 0 0 "" "" "" false false false "" 0 0 0 0 4 0 0)"},
    {"DeviceId", R"({"event": 13, "device_id": -5})", R"(13 0 0 "" "" "" false false false "" 0 0 0 0 0 -5 0)"},
    {"DeviceIdTimestamp", R"({"event": 14, "device_id_ts": 1767225600000})",
     R"(14 0 0 "" "" "" false false false "" 0 0 0 0 0 0 1767225600000)"},
};

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

const EventMemberRow kMembers[] = {
    {"Width", R"({"event": 0, "w": 1, "h": 2})", "w", "uint", R"(0 % 2 "" "" "" false false false "" 0 0 0 0 0 0 0)"},
    {"Height", R"({"event": 0, "w": 1, "h": 2})", "h", "uint", R"(0 1 % "" "" "" false false false "" 0 0 0 0 0 0 0)"},
    {"UiLanguage", R"({"event": 1, "uiLang": ""})", "uiLang", "string",
     R"(1 0 0 % "" "" false false false "" 0 0 0 0 0 0 0)"},
    {"AudioLanguage", R"({"event": 2, "audLang": ""})", "audLang", "string",
     R"(2 0 0 "" % "" false false false "" 0 0 0 0 0 0 0)"},
    {"SubtitleLanguage", R"({"event": 3, "prefSubLang": ""})", "prefSubLang", "string",
     R"(3 0 0 "" "" % false false false "" 0 0 0 0 0 0 0)"},
    {"Subtitles", R"({"event": 4, "isSubEnabled": true})", "isSubEnabled", "bool",
     R"(4 0 0 "" "" "" % false false "" 0 0 0 0 0 0 0)"},
    {"AudioDescription", R"({"event": 5, "isADEnabled": true})", "isADEnabled", "bool",
     R"(5 0 0 "" "" "" false % false "" 0 0 0 0 0 0 0)"},
    {"HearingImpaired", R"({"event": 6, "aud_hearing_imp": true})", "aud_hearing_imp", "bool",
     R"(6 0 0 "" "" "" false false % "" 0 0 0 0 0 0 0)"},
    {"Region", R"({"event": 7, "region": ""})", "region", "string",
     R"(7 0 0 "" "" "" false false false % 0 0 0 0 0 0 0)"},
    {"RatingAge", R"({"event": 8, "age": 1})", "age", "int", R"(8 0 0 "" "" "" false false false "" % 0 0 0 0 0 0)"},
    {"DoNotTrackPolicy", R"({"event": 9, "do_not_track_policy": 1})", "do_not_track_policy", "int",
     R"(9 0 0 "" "" "" false false false "" 0 % 0 0 0 0 0)"},
    {"CookiePolicy", R"({"event": 10, "cookie_policy": 1})", "cookie_policy", "int",
     R"(10 0 0 "" "" "" false false false "" 0 0 % 0 0 0 0)"},
    {"PersistentStorage", R"({"event": 11, "persistent_storage": 1})", "persistent_storage", "int",
     R"(11 0 0 "" "" "" false false false "" 0 0 0 % 0 0 0)"},
    {"BlockTrackingSites", R"({"event": 12, "block_track_sites": 1})", "block_track_sites", "int",
     R"(12 0 0 "" "" "" false false false "" 0 0 0 0 % 0 0)"},
    {"DeviceId", R"({"event": 13, "device_id": 1})", "device_id", "int",
     R"(13 0 0 "" "" "" false false false "" 0 0 0 0 0 % 0)"},
    {"DeviceIdTimestamp", R"({"event": 14, "device_id_ts": 1})", "device_id_ts", "int64",
     R"(14 0 0 "" "" "" false false false "" 0 0 0 0 0 0 %)"},
};

}  // namespace

const EventFamily& EventsUnderTest() {
    static const EventFamily family{[] { Adaptor::GetInstance(); },
                                    &Register,
                                    kProtocol[8].event,
                                    kProtocol[8].received,
                                    "5 callback is null",
                                    "Could not be called here",
                                    R"(2 0 0 "" "deu,eng" "" false false false "" 0 0 0 0 0 0 0)"};
    return family;
}

INSTANTIATE_TEST_SUITE_P(Configuration, ProtocolEvents, ::testing::ValuesIn(kProtocol),
                         NameOfEventRow<ProtocolEventRow>);
INSTANTIATE_TEST_SUITE_P(Configuration, EventForms, ::testing::ValuesIn(kForms), NameOfEventRow<EventRow>);
INSTANTIATE_TEST_SUITE_P(Configuration, EventMembers, ::testing::ValuesIn(kMembers), NameOfEventRow<EventMemberRow>);
INSTANTIATE_TEST_SUITE_P(Configuration, EndOfEvents, ::testing::Values(EventsEnd{&Unregister}));
INSTANTIATE_TEST_SUITE_P(Configuration, RegistrationRequest,
                         ::testing::Values(EventRequests{"\"method\" : 33,", &Unregister, "\"method\" : 34,"}));
INSTANTIATE_TEST_SUITE_P(Configuration, EndRequest,
                         ::testing::Values(EventRequests{"\"method\" : 33,", &Unregister, "\"method\" : 34,"}));

TEST(ConfigurationEvents, AreThoseOfTheProtocol) {
    ExpectTheProtocolsEvents({std::begin(kProtocol), std::end(kProtocol)}, "event", "onConfigurationEvent");
}

}  // namespace hbbtv::test
