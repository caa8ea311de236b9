// The requests of a family: each operation of its adaptor is held to protocol/.
#include <android/log.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>

#include "common/text/json.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "lenient_readings.h"
#include "log_capture.h"
#include "name_difference.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "wire/message.h"
#include "wire_texts.h"
#include "written_json.h"

namespace hbbtv::test {

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.Name();
}

namespace {

constexpr char kJsonTag[] = "[ipc_base]";

std::string NameOf(const ::testing::TestParamInfo<Row>& info) {
    return info.param.Name();
}

std::vector<Row> RowsOf(bool (*chosen)(const Row& row)) {
    std::vector<Row> rows;
    std::copy_if(UnderTest().rows.begin(), UnderTest().rows.end(), std::back_inserter(rows), chosen);
    return rows;
}

std::vector<std::string> TextArguments(const Json::Value& members) {
    std::vector<std::string> texts;
    for (const Json::Value& member : members) {
        if (member["type"] == "string" && !member.isMember("fields")) texts.push_back(member["key"].asString());
    }
    return texts;
}

// The type of a result as ReadingsOf() knows it, and "list" for those of several numbers.
std::string KindOf(const Result& result, const Json::Value& before) {
    if (result.list) return "list";
    if (result.type == "int" && before.isBool()) return "flag";
    return result.type;
}

std::string Shown(const std::string& kind, const Json::Value& value) {
    if (kind == "int") return Show(static_cast<int>(value.asInt64()));
    if (kind == "flag") return Show(value.asBool());
    if (kind == "uint") return Show(static_cast<unsigned>(value.asInt64()));
    if (kind == "bool") return Show(value.asBool());
    if (kind == "double") return Show(value.asDouble());
    if (kind == "pointer") return Show(Handle(value));
    return WriteJson(value);
}

// What a variable holds once it has been given these lists: their elements behind those that it held, side by side when
// there are two lists. A string is replaced by the low bytes of the numbers.
Json::Value WithLists(const Json::Value& before, const Result& result, const Json::Value& values) {
    const Json::Value& first = values[result.arguments[0]];
    if (before.isString()) {
        std::string bytes;
        for (const Json::Value& number : first) bytes += static_cast<char>(number.asInt());
        return bytes;
    }
    Json::Value list = before;
    for (Json::ArrayIndex i = 0; i < first.size(); ++i) {
        Json::Value element(Json::arrayValue);
        for (const std::string& name : result.arguments) element.append(values[name][i]);
        list.append(element.size() == 1 ? element[0] : element);
    }
    return list;
}

void ExpectResults(const Row& row, const Outcome& outcome, const Json::Value& values) {
    EXPECT_EQ(outcome.status, 0);
    const std::vector<Result> results = ResultsOf(row.Operation()["reply"]);
    ASSERT_EQ(outcome.results.size(), results.size());
    for (size_t i = 0; i < results.size(); ++i) {
        const std::string kind = KindOf(results[i], outcome.before[i]);
        const Json::Value expected =
            results[i].list ? WithLists(outcome.before[i], results[i], values) : values[results[i].arguments[0]];
        EXPECT_EQ(Shown(kind, outcome.results[i]), Shown(kind, expected)) << results[i].arguments[0];
    }
}

void ExpectUntouched(const Outcome& outcome, int status) {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.results, outcome.before);
}

class RowTest : public ::testing::TestWithParam<Row> {
  protected:
    ~RowTest() override { UnderTest().deleteInstance(); }

    Json::Value ReplyValues() const { return GetParam().Reply(false); }
    std::string ReplyText() const { return WriteJson(GetParam().ReplyDocument(ReplyValues())); }
    std::string ReplyWith(const std::string& ret) const { return WithMember(ReplyText(), "ret", ret); }
    int Lines() const { return GetParam().IsOneWay() ? 0 : 1; }

    const ScratchDirectory& mDirectory = DirectoryOfThisProgram();
    const std::string mSocket = UnderTest().Socket();
};

class Request : public RowTest {};
class Reply : public RowTest {};
class OneWay : public RowTest {};
class PlatformProcess : public RowTest {};
class Texts : public RowTest {};

}  // namespace

TEST_P(Request, IsARowOfTheProtocol) {
    const Row& row = GetParam();
    ASSERT_TRUE(row.Operation().isObject());
    EXPECT_NE(row.Operation()["doc"].asString(), "");
    const std::vector<std::string> parameters = row.Parameters();
    if (row.CountOfValues() >= 0) {
        EXPECT_EQ(row.CountOfValues(), static_cast<int>(parameters.size()));
    }
    for (const std::string& argument : ArgumentNames(row.Operation()["request"])) {
        EXPECT_EQ(std::count(parameters.begin(), parameters.end(), argument), 1) << argument;
    }
}

TEST_P(Request, IsWhatTheProtocolSays) {
    FakePlatform platform(mSocket, ReplyText());
    const Json::Value& members = GetParam().Operation()["request"];
    std::vector<Json::Value> requests;
    // Each bool is true by itself once, so that no two can be exchanged.
    for (int trueBool = kNoBool; trueBool < CountBools(members); ++trueBool) {
        requests.push_back(GetParam().Request(trueBool));
    }
    // A null handle is an empty string.
    Json::Value nulls = requests.back();
    for (const Json::Value& member : members) {
        if (member["type"] == "pointer" && !member.isMember("repeat")) nulls[member["key"].asString()] = 0;
    }
    requests.push_back(nulls);
    for (const Json::Value& values : requests) {
        platform.ForgetFrames();
        GetParam().Call(values);
        ASSERT_TRUE(platform.WaitForFrames(1));
        const std::vector<Frame> frames = platform.Frames();
        ASSERT_EQ(frames.size(), 1u);
        EXPECT_EQ(frames[0].type, GetParam().IsOneWay() ? kOneWay : kRequest);
        EXPECT_EQ(frames[0].port, UnderTest().Port());
        EXPECT_EQ(frames[0].payload, GetParam().RequestText(values));
    }
}

TEST_P(Request, StandsBetweenEnterAndLeaveInTheLog) {
    LogCapture log;
    std::atomic<int> entered{0};
    std::atomic<int> left{0};
    FakePlatform platform(mSocket, [&](const Frame&) {
        entered = log.Count(ANDROID_LOG_VERBOSE, UnderTest().tag, "ENTER");
        left = log.Count(ANDROID_LOG_VERBOSE, UnderTest().tag, "LEAVE");
        return ReplyText();
    });
    GetParam().Call();
    EXPECT_EQ(entered, Lines());
    EXPECT_EQ(left, 0);

    std::vector<LogLine> lines;
    for (const LogLine& line : log.Lines()) {
        if (line.tag == UnderTest().tag) lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 2u) << log.Text();
    EXPECT_EQ(lines[0].message, "ENTER");
    EXPECT_EQ(lines[1].message, "LEAVE");
    for (const LogLine& line : lines) {
        EXPECT_EQ(line.priority, ANDROID_LOG_VERBOSE);
        EXPECT_EQ(line.file, UnderTest().sourceFile);
        EXPECT_GT(line.line, 0);
        EXPECT_EQ(line.function, GetParam().Name());
        EXPECT_EQ(line.text,
                  "[tolm](" + line.file + ":" + std::to_string(line.line) + ") " + line.function + ": " + line.message);
    }
}

TEST_P(Reply, GivesTheResults) {
    FakePlatform platform(mSocket, ReplyText());
    ExpectResults(GetParam(), GetParam().Call(), ReplyValues());
}

TEST_P(Reply, MayHaveUnknownMembers) {
    FakePlatform platform(mSocket, WithMember(WithMember(ReplyText(), "more", "[1, {\"ret\": 5}]"), "Ret", "9"));
    ExpectResults(GetParam(), GetParam().Call(), ReplyValues());
}

TEST_P(Reply, IsReadLeniently) {
    FakePlatform platform(mSocket, ReplyText());
    const std::vector<Result> results = ResultsOf(GetParam().Operation()["reply"]);
    for (size_t i = 0; i < results.size(); ++i) {
        // Lists have tests of their own.
        if (results[i].list) continue;
        platform.SetReply(ReplyText());
        const Json::Value before = GetParam().Call().before[i];
        const std::string kind = KindOf(results[i], before);
        const std::string unchanged = Shown(kind, before);
        for (const Reading& reading : ReadingsOf(kind, unchanged.c_str())) {
            SCOPED_TRACE(results[i].arguments[0] + ": " + reading.json);
            platform.SetReply(WithMember(ReplyText(), results[i].arguments[0], reading.json));
            const Outcome outcome = GetParam().Call();
            EXPECT_EQ(outcome.status, reading.shown != nullptr ? 0 : -1);
            const Json::Value& result = outcome.results[i];
            EXPECT_EQ(kind == "string" ? Show(result.asString()) : Shown(kind, result),
                      reading.shown != nullptr ? reading.shown : unchanged);
        }
    }
    // The call without a result does not look at other members.
    platform.SetReply("{\"ret\": 0}");
    const bool fails = !results.empty() && results[0].type == "pointer";
    EXPECT_EQ(GetParam().Call().status, fails ? -1 : 0);
}

TEST_P(Reply, ReturnsStringsUnchanged) {
    FakePlatform platform(mSocket, "");
    const std::vector<Result> results = ResultsOf(GetParam().Operation()["reply"]);
    for (size_t i = 0; i < results.size(); ++i) {
        if (results[i].list || results[i].type != "string") continue;
        for (const WireText& text : WireTexts()) {
            SCOPED_TRACE(text.name);
            platform.SetReply(WithMember(ReplyText(), results[i].arguments[0], text.onTheWire));
            const Outcome outcome = GetParam().Call();
            EXPECT_EQ(outcome.status, 0);
            EXPECT_EQ(outcome.results[i].asString(), text.readBack);
        }
        // A platform need not escape what is not ASCII.
        const std::string unescaped = "K\xc3\xb6ln \xe2\x82\xac \xf0\x9f\x93\xba";
        platform.SetReply(WithMember(ReplyText(), results[i].arguments[0], "\"" + unescaped + "\""));
        EXPECT_EQ(GetParam().Call().results[i].asString(), unescaped);
    }
}

TEST_P(Reply, WithAnotherRetWritesNoResults) {
    FakePlatform platform(mSocket, "");
    for (const int ret : {1, 3, -1, -5, 2147483647, -2147483647 - 1}) {
        SCOPED_TRACE(ret);
        platform.SetReply(ReplyWith(std::to_string(ret)));
        ExpectUntouched(GetParam().Call(), GetParam().FailsOnlyWithMinusOne() ? -1 : ret);
    }
}

TEST_P(Reply, WithoutAnIntegerAsRetIsAFailure) {
    LogCapture log;
    FakePlatform platform(mSocket, "");
    int failures = 0;
    for (const char* ret :
         {"", "\"0\"", "\"3\"", "null", "false", "0.5", "2147483648", "4294967296", "1e300", "[0]", "{}"}) {
        SCOPED_TRACE(ret);
        platform.SetReply(ReplyWith(ret));
        ExpectUntouched(GetParam().Call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 1 1 0"), ++failures) << log.Text();
    }
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Reply, IsAFailureIfItIsNotAnObject) {
    LogCapture log;
    FakePlatform platform(mSocket, "");
    int failures = 0;
    for (const char* reply : {"null", "0", "true", "\"ret\"", "[]", "[{\"ret\": 0}]"}) {
        SCOPED_TRACE(reply);
        platform.SetReply(reply);
        ExpectUntouched(GetParam().Call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 1 1 0"), ++failures) << log.Text();
    }
    // No failure of the connection: the next reply comes over the same one.
    platform.SetReply(ReplyText());
    ExpectResults(GetParam(), GetParam().Call(), ReplyValues());
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Reply, IsAFailureIfItIsNotJson) {
    LogCapture log;
    FakePlatform platform(mSocket, "");
    const std::string tooDeep = "{\"ret\": 0, \"a\": " + std::string(1001, '[') + std::string(1001, ']') + "}";
    int failures = 0;
    for (const std::string& reply :
         {std::string("nonsense"), std::string("{\"ret\": 0"), std::string("{ret: 0}"), std::string(" "),
          std::string(1, '\0'), std::string("\xff\xfe"), std::string("{\"ret\": 1e999}"), tooDeep}) {
        SCOPED_TRACE(reply.substr(0, 40));
        platform.SetReply(reply);
        ExpectUntouched(GetParam().Call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 1 0 1"), ++failures) << log.Text();
    }
    platform.SetReply(ReplyText());
    ExpectResults(GetParam(), GetParam().Call(), ReplyValues());
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Reply, OfSizeZeroIsAClosedConnection) {
    LogCapture log;
    FakePlatform platform(mSocket, "");
    ExpectUntouched(GetParam().Call(), -1);
    EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 0 1 1"), 1) << log.Text();
    platform.SetReply(ReplyText());
    ExpectResults(GetParam(), GetParam().Call(), ReplyValues());
    EXPECT_EQ(platform.Connections(), 2);
}

TEST_P(OneWay, NeedsNoReply) {
    FakePlatform platform(mSocket, "");
    for (size_t times = 1; times <= 3; ++times) {
        ExpectResults(GetParam(), GetParam().Call(), Json::Value());
        ASSERT_TRUE(platform.WaitForFrames(times));
        EXPECT_EQ(platform.Frames().back().type, kOneWay);
    }
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Texts, AreSentAsJsonStrings) {
    FakePlatform platform(mSocket, ReplyText());
    const std::vector<std::string> arguments = TextArguments(GetParam().Operation()["request"]);
    for (const WireText& text : WireTexts()) {
        SCOPED_TRACE(text.name);
        Json::Value values = GetParam().Request();
        const std::string marked = GetParam().RequestText(values);
        const bool cut = GetParam().TextsEndAtZero() && text.text.find('\0') != std::string::npos;
        const std::string onTheWire = cut ? WriteJson(text.text.c_str()) : text.onTheWire;
        std::string expected = marked;
        for (const std::string& argument : arguments) {
            const std::string mark = WriteJson(values[argument]);
            expected.replace(expected.find(mark), mark.size(), onTheWire);
            values[argument] = text.text;
        }
        platform.ForgetFrames();
        GetParam().Call(values);
        ASSERT_TRUE(platform.WaitForFrames(1));
        ASSERT_EQ(platform.Frames().size(), 1u);
        EXPECT_EQ(platform.Frames()[0].payload, expected);
    }
}

// A one-way message fails without a line of the JSON base.
TEST_P(PlatformProcess, MayBeDownAndComeBack) {
    LogCapture log;
    ExpectUntouched(GetParam().Call(), -1);
    EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 0 1 1"), Lines()) << log.Text();
    for (int i = 0; i < 2; ++i) {
        {
            FakePlatform platform(mSocket, ReplyText());
            ExpectResults(GetParam(), GetParam().Call(), ReplyValues());
            ASSERT_TRUE(platform.WaitForFrames(1));
            EXPECT_EQ(platform.Frames().size(), 1u);
        }
        log.Clear();
        ExpectUntouched(GetParam().Call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 0 1 1"), Lines()) << log.Text();
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, Request, ::testing::ValuesIn(UnderTest().rows), NameOf);
INSTANTIATE_TEST_SUITE_P(Rows, PlatformProcess, ::testing::ValuesIn(UnderTest().rows), NameOf);
INSTANTIATE_TEST_SUITE_P(Rows, Reply, ::testing::ValuesIn(RowsOf([](const Row& row) { return !row.IsOneWay(); })),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(Rows, OneWay, ::testing::ValuesIn(RowsOf([](const Row& row) { return row.IsOneWay(); })),
                         NameOf);
INSTANTIATE_TEST_SUITE_P(Rows, Texts, ::testing::ValuesIn(RowsOf([](const Row& row) {
                             return !TextArguments(row.Operation()["request"]).empty();
                         })),
                         NameOf);

// Not every family has such operations.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Reply);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneWay);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Texts);

TEST(Protocol, HasTheRowsOfThisTest) {
    std::vector<std::string> names;
    for (const Json::Value& operation : UnderTest().Wire().protocol["operations"]) {
        names.push_back(operation["name"].asString());
    }
    std::vector<std::string> rows;
    for (const Row& row : UnderTest().rows) rows.push_back(row.Name());
    ASSERT_EQ(NameDifference(rows, names), "");
    for (size_t i = 0; i < names.size(); ++i) EXPECT_EQ(UnderTest().rows[i].Name(), names[i]);
}

TEST(Protocol, NamesNoCodeOfAnOperationAsUnused) {
    const Json::Value& protocol = UnderTest().Wire().protocol;
    for (const Json::Value& operation : protocol["operations"]) {
        for (const Json::Value& codes : protocol["unused_codes"]) {
            const int code = operation["code"].asInt();
            EXPECT_FALSE(codes["from"].asInt() <= code && code <= codes["to"].asInt()) << code;
        }
    }
}

TEST(Protocol, NamesTheSocketsOfItsKeys) {
    for (const Json::Value& endpoint : UnderTest().Wire().protocol["endpoints"]) {
        EXPECT_EQ(endpoint["socket"].asString(), tolm::TolmIpcKeyConverter::GetInstance()->GetSocketName(
                                                     static_cast<TolmIpcKeyId>(endpoint["key"].asInt())));
    }
}

TEST(Protocol, HasAnExampleThatIsWhatTravels) {
    DirectoryOfThisProgram();
    const Json::Value& example = UnderTest().Wire().protocol["examples"]["request"];
    const Row& row = UnderTest().RowOf(example["operation"].asString());
    FakePlatform platform(UnderTest().Socket(), example["reply"].toStyledString());
    const Outcome outcome = row.Call(ValuesOf(row.Operation()["request"], example["document"]));
    UnderTest().deleteInstance();
    ExpectResults(row, outcome, ValuesOf(row.Operation()["reply"], example["reply"]));
    ASSERT_TRUE(platform.WaitForFrames(1));
    ASSERT_EQ(platform.Frames().size(), 1u);
    EXPECT_EQ(platform.Frames()[0].payload, example["document"].toStyledString());
}

}  // namespace hbbtv::test
