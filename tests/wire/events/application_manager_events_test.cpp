// What the application manager tells and asks: how it is read, in all its forms, and which functions it reaches.

#include <android/log.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>

#include "event_connection.h"
#include "ipc/src/plugin/tolm_apm_adaptor_ipc.h"
#include "lenient_readings.h"
#include "log_capture.h"
#include "rows.h"
#include "scratch_directory.h"
#include "shown_event.h"
#include "wire/endpoint.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Apm = TolmApmAdaptorIpc;
using Lines = std::vector<std::string>;

constexpr char kEvent[] = R"({"t": 237, "appid": 17, "orgid": 19})";
constexpr char kQuestion[] = R"({"t": 271, "countryCode": "DEU"})";
constexpr char kRefused[] = "{\n\t\"ret\" : -1\n}\n";
constexpr char kAccepted[] = "{\n\t\"ret\" : 0\n}\n";

void* Context(uintptr_t bits) {
    return reinterpret_cast<void*>(bits);
}

std::mutex gMutex;
Lines gReceived;  // guarded by gMutex

void Note(const std::string& line) {
    std::lock_guard<std::mutex> lock(gMutex);
    gReceived.push_back(line);
}

// "receiver code application organisation context"
void NoteEvent(const char* receiver, TolmAIPEvent event, const TolmAIPEventInfo& info, const void* context) {
    char line[128];
    snprintf(line, sizeof(line), "%s %d %d %d 0x%lx", receiver, event, info.appId, info.orgId,
             static_cast<unsigned long>(reinterpret_cast<uintptr_t>(context)));
    Note(line);
}

void First(const TolmAIPEvent& event, const TolmAIPEventInfo& info, const void* context) {
    NoteEvent("first", event, info, context);
}

void Second(const TolmAIPEvent& event, const TolmAIPEventInfo& info, const void* context) {
    NoteEvent("second", event, info, context);
}

void UnregisterInHandler(const TolmAIPEvent& event, const TolmAIPEventInfo& info, const void* context) {
    Apm::GetInstance()->UnRegisterAIPEventCallback(1, nullptr);
    NoteEvent("once", event, info, context);
}

void AskInHandler(const TolmAIPEvent& event, const TolmAIPEventInfo&, const void* context) {
    TolmAIPEventInfo current{};
    Apm::GetInstance()->GetCurrentApp(current.appId, current.orgId);
    NoteEvent("asked", event, current, context);
}

void Rate(const char* countryCode, int32_t* rating) {
    Note("rate " + std::to_string(*rating) + " " + countryCode);
    *rating = 7;
}

void RateNothing(const char* countryCode, int32_t* rating) {
    Note("rate nothing " + std::to_string(*rating) + " " + countryCode);
}

// Of an event that this adaptor never calls.
void NeverCalled(int, int, const void*) {
    Note("never");
}

const TolmAIPEventCallback kFirst = ToAIPEventCallback(First);
const TolmAIPEventCallback kSecond = ToAIPEventCallback(Second);

class ApplicationManagerEvents : public ::testing::Test {
  protected:
    ApplicationManagerEvents() { Apm::GetInstance(); }
    ~ApplicationManagerEvents() override { Apm::DeleteInstance(); }

    Apm& Adaptor() { return *Apm::GetInstance(); }

    void Register(TolmAIPEvent event, TolmAIPEventCallback callback, uintptr_t context) {
        EXPECT_EQ(Adaptor().RegisterAIPEventCallback(event, callback, Context(context)), 0);
    }

    void Unregister(TolmAIPEvent event, uintptr_t context) {
        EXPECT_EQ(Adaptor().UnRegisterAIPEventCallback(event, Context(context)), 0);
    }

    EventConnection Connection() const {
        const Endpoint events = EventsOf(UnderTest().Wire());
        return {mDirectory / events.socket, events.port};
    }

    // Sends one-way events on one connection; returns what the functions got by the time they were handled.
    Lines Send(const Lines& events) const {
        Forget();
        EXPECT_TRUE(Connection().Send(events));
        return Received();
    }

    // Returns the reply to a question.
    std::string Ask(const std::string& question) const {
        Forget();
        return Connection().Reply(question);
    }

    static Lines Received() {
        std::lock_guard<std::mutex> lock(gMutex);
        return gReceived;
    }

    static void Forget() {
        std::lock_guard<std::mutex> lock(gMutex);
        gReceived.clear();
    }

    ScratchDirectory mDirectory;
    LogCapture mLog;
};

struct Form {
    const char* name;
    const char* event;
    const char* received;  // empty when it reaches nobody
};

const Form kForms[] = {
    {"Complete", kEvent, "first 1 17 19 0x80c0ffee"},
    {"OtherMembers", R"({"t": 237, "appid": 17, "orgid": 19, "type": 3, "method": 1, "event": 2})",
     "first 1 17 19 0x80c0ffee"},
    {"FractionForCode", R"({"t": 237.5, "appid": 17, "orgid": 19})", "first 1 17 19 0x80c0ffee"},
    {"FullScreen", R"({"t": 270, "bValue": 1, "isDestroy": 0})", ""},
    {"FullScreenAlone", R"({"t": 270})", ""},
    {"FullScreenDamaged", R"({"t": 270, "bValue": [1], "isDestroy": "x"})", ""},
    {"TheQuestion", kQuestion, ""},
    {"AnotherCode", R"({"t": 238, "appid": 17, "orgid": 19})", ""},
    {"AnEventForACode", R"({"t": 1, "appid": 17, "orgid": 19})", ""},
    {"NoCode", R"({"appid": 17, "orgid": 19})", ""},
    {"TextForCode", R"({"t": "237", "appid": 17, "orgid": 19})", ""},
    {"NullForCode", R"({"t": null, "appid": 17, "orgid": 19})", ""},
    {"CodeOutOfRange", R"({"t": 4294967533, "appid": 17, "orgid": 19})", ""},
    {"CodeUnderAnotherKey", R"({"type": 0, "method": 237, "appid": 17, "orgid": 19})", ""},
    {"Nothing", "{}", ""},
};

void PrintTo(const Form& form, std::ostream* out) {
    *out << form.name;
}

class ApplicationManagerEventForms : public ApplicationManagerEvents, public ::testing::WithParamInterface<Form> {};

}  // namespace

TEST_P(ApplicationManagerEventForms, AreReadLeniently) {
    Register(1, kFirst, 0x80c0ffee);
    Register(4, ToAIPEventCallback(Rate), 0);
    Register(26, ToAIPEventCallback(NeverCalled), 0x26);
    const std::string received = GetParam().received;
    EXPECT_EQ(Send({GetParam().event}), received.empty() ? Lines{} : Lines{received});
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), 0) << mLog.Text();
}

INSTANTIATE_TEST_SUITE_P(Each, ApplicationManagerEventForms, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param.name); });

TEST_F(ApplicationManagerEvents, HaveTheirIdsReadLeniently) {
    Register(1, kFirst, 0x80c0ffee);
    const ProtocolEvent event("application loaded");
    ShownMembers none;
    std::string alone = event.Text();
    const auto line = [](ShownMembers& shown) {
        return "first 1 " + shown["appid"] + " " + shown["orgid"] + " 0x80c0ffee";
    };
    for (const std::string key : {"appid", "orgid"}) {
        for (const Reading& reading : ReadingsOf("int", nullptr)) {
            SCOPED_TRACE(key + ": " + reading.json);
            ShownMembers shown = ShownOf(event);
            shown[key] = reading.shown;
            EXPECT_EQ(Send({WithMember(event.Text(), key, reading.json)}), Lines{line(shown)});
        }
        none[key] = "0";
        alone = WithMember(alone, key, "");
    }
    EXPECT_EQ(Send({alone}), Lines{line(none)});
}

TEST_F(ApplicationManagerEvents, AreDroppedIfTheyAreNotObjects) {
    Register(1, kFirst, 7);
    int failures = 0;
    for (const char* event : {"nonsense", " ", "null", "237", "\"t\"", "[{\"t\": 237}]", "{\"t\": 237"}) {
        SCOPED_TRACE(event);
        EXPECT_EQ(Send({event}), Lines{});
        EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), ++failures);
    }
    // The endpoint lives on.
    EXPECT_EQ(Send({kEvent}), (Lines{"first 1 17 19 0x7"}));
}

TEST_F(ApplicationManagerEvents, ComeInOrder) {
    Register(1, kFirst, 7);
    EXPECT_EQ(Send({kEvent, R"({"t": 237, "appid": 2, "orgid": 3})", R"({"t": 270})", kEvent}),
              (Lines{"first 1 17 19 0x7", "first 1 2 3 0x7", "first 1 17 19 0x7"}));
}

TEST_F(ApplicationManagerEvents, AreDroppedSilentlyWithoutARegistration) {
    Register(2, kFirst, 7);
    Register(3, kFirst, 7);
    Register(26, kFirst, 7);
    mLog.Clear();
    EXPECT_EQ(Send({kEvent, R"({"t": 270, "bValue": 1})"}), Lines{});
    for (const LogLine& line : mLog.Lines()) EXPECT_NE(line.tag, "[ipc_apm]") << line.text;
}

TEST_F(ApplicationManagerEvents, ReachTheFirstFunctionOncePerContext) {
    Register(1, kFirst, 7);
    Register(1, kSecond, 8);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 1 17 19 0x7", "first 1 17 19 0x8"}));
}

TEST_F(ApplicationManagerEvents, ReachAContextAsOftenAsItWasRegistered) {
    Register(1, kFirst, 8);
    Register(1, kFirst, 7);
    Register(1, kFirst, 8);
    Register(1, kFirst, 0);
    EXPECT_EQ(Send({kEvent}),
              (Lines{"first 1 17 19 0x8", "first 1 17 19 0x7", "first 1 17 19 0x8", "first 1 17 19 0x0"}));
}

TEST_F(ApplicationManagerEvents, AreDroppedWhenOneOfTwoContextsIsUnregistered) {
    Register(1, kFirst, 7);
    Register(1, kFirst, 8);
    Unregister(1, 7);
    EXPECT_EQ(Send({kEvent}), Lines{});
    // The other context is still there, for the next function.
    Register(1, kSecond, 9);
    EXPECT_EQ(Send({kEvent}), (Lines{"second 1 17 19 0x8", "second 1 17 19 0x9"}));
}

TEST_F(ApplicationManagerEvents, LoseEveryRegistrationOfAContextThatIsUnregistered) {
    Register(1, kFirst, 7);
    Register(1, kFirst, 8);
    Register(1, kFirst, 7);
    Unregister(1, 7);
    Register(1, kFirst, 9);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 1 17 19 0x8", "first 1 17 19 0x9"}));
    // One that was never registered also removes the function.
    Unregister(1, 0x1234);
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(ApplicationManagerEvents, OfOneNumberAreNotEndedByAnother) {
    Register(1, kFirst, 7);
    Register(2, kFirst, 7);
    Unregister(2, 7);
    Unregister(5, 7);
    EXPECT_EQ(Send({kEvent}), (Lines{"first 1 17 19 0x7"}));
}

TEST_F(ApplicationManagerEvents, AreDroppedAfterAllRegistrationsAreCleared) {
    Register(1, kFirst, 7);
    Register(4, ToAIPEventCallback(Rate), 0);
    Adaptor().ClearAPIEventCallback();
    EXPECT_EQ(Send({kEvent}), Lines{});
    EXPECT_EQ(Ask(kQuestion), kRefused);
    Register(1, kSecond, 9);
    EXPECT_EQ(Send({kEvent}), (Lines{"second 1 17 19 0x9"}));
}

TEST_F(ApplicationManagerEvents, AreDroppedWhenNoFunctionIsRegistered) {
    Register(1, nullptr, 7);
    Register(4, nullptr, 7);
    EXPECT_EQ(Send({kEvent}), Lines{});
    EXPECT_EQ(Ask(kQuestion), kRefused);
}

TEST_F(ApplicationManagerEvents, AreDroppedByARecreatedAdaptor) {
    Register(1, kFirst, 7);
    Apm::DeleteInstance();
    ASSERT_NE(Apm::GetInstance(), nullptr);
    EXPECT_EQ(Send({kEvent}), Lines{});
}

TEST_F(ApplicationManagerEvents, LetAFunctionTakeItselfBackAndStillReachAllContexts) {
    Register(1, ToAIPEventCallback(UnregisterInHandler), 0);
    Register(1, nullptr, 8);
    EXPECT_EQ(Send({kEvent, kEvent}), (Lines{"once 1 17 19 0x0", "once 1 17 19 0x8"}));
}

TEST_F(ApplicationManagerEvents, LetAFunctionMakeRequests) {
    const FakePlatform platform(UnderTest().Socket(), R"({"ret": 0, "appid": 501, "orgid": 502})");
    Register(1, ToAIPEventCallback(AskInHandler), 9);
    EXPECT_EQ(Send({kEvent}), (Lines{"asked 1 501 502 0x9"}));
}

TEST_F(ApplicationManagerEvents, NeedNoPlatformToBeRegistered) {
    mLog.Clear();
    Register(1, kFirst, 7);
    Unregister(1, 7);
    Adaptor().ClearAPIEventCallback();
    Lines lines;
    for (const LogLine& line : mLog.Lines()) {
        if (line.tag == "[ipc_apm]") lines.push_back(line.function + " " + line.message);
    }
    EXPECT_EQ(lines, (Lines{"RegisterAIPEventCallback ENTER", "RegisterAIPEventCallback LEAVE",
                            "UnRegisterAIPEventCallback ENTER", "UnRegisterAIPEventCallback LEAVE",
                            "ClearAPIEventCallback ENTER", "ClearAPIEventCallback LEAVE"}));
}

TEST_F(ApplicationManagerEvents, ComeWhileRegistrationsChange) {
    std::atomic<bool> stop{false};
    std::thread sender([&] {
        while (!stop) {
            Send({kEvent, kEvent, kEvent});
            Ask(kQuestion);
        }
    });
    for (int i = 0; i < 1000; ++i) {
        Register(1, kFirst, 1);
        Register(4, ToAIPEventCallback(Rate), 0);
        Register(1, kSecond, 2);
        Unregister(1, 1);
        if (i % 2 == 0) Adaptor().ClearAPIEventCallback();
        Unregister(1, 2);
        Unregister(4, 0);
    }
    stop = true;
    sender.join();
    EXPECT_EQ(Send({kEvent}), Lines{});
    EXPECT_EQ(Ask(kQuestion), kRefused);
}

TEST_F(ApplicationManagerEvents, AreThoseOfTheProtocol) {
    const Json::Value& protocol = UnderTest().Wire().protocol;
    EXPECT_EQ(protocol["event_envelope"].size(), 1u);
    EXPECT_EQ(protocol["event_envelope"]["code"]["key"].asString(), "t");
    Lines events;
    for (const Json::Value& event : protocol["events"]) {
        std::string line = event["code"].asString() + " " + event["forms"][0].asString() + " ";
        line += event["callback"].isNull() ? "-" : event["callback"].asString();
        for (const Json::Value& member : event["members"]) {
            line += " " + member["key"].asString() + ":" + member["type"].asString();
        }
        for (const Json::Value& member : event["reply"]) line += " > " + member["key"].asString();
        EXPECT_EQ(event["forms"].size(), 1u);
        events.push_back(line);
    }
    EXPECT_EQ(events,
              (Lines{"237 one-way onApplicationEvent appid:int orgid:int", "270 one-way - bValue:int isDestroy:int",
                     "271 request onGetLocalParantalRating countryCode:string > parentalRating"}));
    Register(1, kFirst, 7);
    EXPECT_EQ(Send({protocol["examples"]["event"]["document"].toStyledString()}), (Lines{"first 1 17 19 0x7"}));
}

using TheParentalRatingQuestion = ApplicationManagerEvents;

TEST_F(TheParentalRatingQuestion, IsAnsweredByWhatTheFunctionLeaves) {
    Register(4, ToAIPEventCallback(Rate), 0);
    EXPECT_EQ(Ask(kQuestion), "{\n\t\"parentalRating\" : 7,\n\t\"ret\" : 0\n}\n");
    EXPECT_EQ(Received(), (Lines{"rate 0 DEU"}));
}

TEST_F(TheParentalRatingQuestion, IsAnsweredByZeroWhenTheFunctionLeavesItThere) {
    Register(4, ToAIPEventCallback(RateNothing), 0);
    EXPECT_EQ(Ask(kQuestion), "{\n\t\"parentalRating\" : 0,\n\t\"ret\" : 0\n}\n");
    EXPECT_EQ(Received(), (Lines{"rate nothing 0 DEU"}));
}

TEST_F(TheParentalRatingQuestion, ReachesTheFirstFunctionOnceHoweverOftenItIsRegistered) {
    Register(4, ToAIPEventCallback(RateNothing), 1);
    Register(4, ToAIPEventCallback(Rate), 2);
    EXPECT_EQ(Ask(kQuestion), "{\n\t\"parentalRating\" : 0,\n\t\"ret\" : 0\n}\n");
    EXPECT_EQ(Received(), (Lines{"rate nothing 0 DEU"}));
}

TEST_F(TheParentalRatingQuestion, IsRefusedWithoutAFunction) {
    Register(1, kFirst, 7);
    EXPECT_EQ(Ask(kQuestion), kRefused);
    Register(4, ToAIPEventCallback(Rate), 0);
    Unregister(4, 0);
    EXPECT_EQ(Ask(kQuestion), kRefused);
    EXPECT_EQ(Received(), Lines{});
}

TEST_F(TheParentalRatingQuestion, IsReadLeniently) {
    Register(4, ToAIPEventCallback(RateNothing), 0);
    std::vector<Reading> countries = ReadingsOf("string", nullptr);
    countries.push_back({R"("\u00e9")", "\"\xc3\xa9\""});
    for (const auto& [json, shown] : countries) {
        SCOPED_TRACE(json);
        EXPECT_EQ(Ask(WithMember(kQuestion, "countryCode", json)), "{\n\t\"parentalRating\" : 0,\n\t\"ret\" : 0\n}\n");
        const std::string country(shown + 1, strcspn(shown + 1, "\"\\"));  // up to its end or to a zero byte
        EXPECT_EQ(Received(), (Lines{"rate nothing 0 " + country}));
    }
}

TEST_F(TheParentalRatingQuestion, IsTheOnlyOneThatIsAsked) {
    Register(1, kFirst, 7);
    Register(4, ToAIPEventCallback(Rate), 0);
    for (const char* question : {"{}", kEvent, R"({"t": 270})", R"({"t": 272})", R"({"t": "271"})", R"({"t": -1})",
                                 R"({"type": 0, "method": 271})"}) {
        SCOPED_TRACE(question);
        EXPECT_EQ(Ask(question), kAccepted);
        EXPECT_EQ(Received(), Lines{});
    }
}

TEST_F(TheParentalRatingQuestion, GetsAnEmptyReplyIfItIsNotAnObject) {
    Register(4, ToAIPEventCallback(Rate), 0);
    for (const char* question : {"nonsense", "null", "271", "[{\"t\": 271}]"}) {
        SCOPED_TRACE(question);
        EXPECT_EQ(Ask(question), "");
        EXPECT_EQ(Received(), Lines{});
    }
    EXPECT_EQ(mLog.Count(ANDROID_LOG_WARN, "[ipc_base]", "Ipc2Json failed"), 4);
}

}  // namespace hbbtv::test
