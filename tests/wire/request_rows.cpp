#include "request_rows.h"

#include <android/log.h>

#include <memory>

#include "log_capture.h"
#include "protocol_file.h"
#include "wire_texts.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

constexpr char kJsonTag[] = "[ipc_base]";

bool AllOf(const std::string& text, const char* characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string::npos;
}

// Whether a member of this type says how many numbers or pairs of numbers a list has.
bool Counts(const std::string& type) {
    return type == "count" || type == "pairs";
}

// How a value of each type is written in the rows.
bool IsWrittenAs(const std::string& type, const std::string& value) {
    constexpr char kDigits[] = "0123456789";
    const std::string quoted = value.size() > 2 ? value.substr(1, value.size() - 2) : "";
    if (type == "int") return value[0] == '-' && AllOf(value.substr(1), kDigits);
    if (type == "uint") return AllOf(value, kDigits) && std::stoull(value) > 0x7fffffffu;
    if (Counts(type)) return AllOf(value, kDigits);
    if (type == "bool") return value == "true" || value == "false";
    if (type == "double") return AllOf(value, "-.0123456789") && value.find('.') != std::string::npos;
    if (type == "array") return value == "null" || value[0] == '[';
    if (value[0] != '"') return false;
    if (type == "string") return !quoted.empty() && quoted[0] != '0';
    return type == "pointer" && quoted.size() == 10 && quoted.rfind("0x", 0) == 0 && quoted[2] >= '8' &&
           AllOf(quoted.substr(2), "0123456789abcdef");
}

// The type that the member of a result has among those as they were written.
std::string TypeAsWritten(const std::string& type) {
    if (type == "flag") return "int";
    if (type == "few") return "uint";
    return type == "length" ? "count" : type;
}

Json::Value OperationOf(const Json::Value& protocol, const std::string& name) {
    for (const Json::Value& operation : protocol["operations"]) {
        if (operation["name"] == name) return operation;
    }
    return Json::Value();
}

// A list of members as it was written. The last one may be repeated, as often as the one that counts it says.
std::vector<Json::Value> MembersAsWritten(const Json::Value& list, const WrittenMembers& written) {
    std::vector<Json::Value> members(list.begin(), list.end());
    int count = 0;
    for (const Json::Value& member : list) {
        const Json::Value& counter = member.isMember("fields") ? member["fields"]["repeat"]
                                     : member.isMember("size") ? member["size"]
                                                               : member["repeat"];
        for (size_t i = 0; i < members.size() && i < written.size(); ++i) {
            if (members[i]["key"] != counter) continue;
            const std::string type = list[static_cast<Json::ArrayIndex>(i)]["type"].asString();
            EXPECT_TRUE(type == "int" || type == "uint") << type;
            members[i]["type"] = member.isMember("fields") ? "pairs" : "count";
            count = std::stoi(written[i].second);
        }
    }
    if (members.empty() || !members.back().isMember("repeat")) return members;
    const Json::Value repeated = members.back();
    members.pop_back();
    const std::string key = repeated["key"].asString();
    const size_t number = key.find("%d");
    for (int i = 0; i < count; ++i) {
        members.push_back(repeated);
        members.back()["key"] = key.substr(0, number) + std::to_string(i) + key.substr(number + 2);
    }
    return members;
}

void ExpectWrittenAs(const Json::Value& member, const std::string& key, const std::string& value) {
    EXPECT_EQ(member["key"].asString(), key);
    // A number that has few values need not be negative.
    const std::string type = member.isMember("max") ? "count" : member["type"].asString();
    EXPECT_TRUE(IsWrittenAs(type, value)) << key << " is no " << member["type"] << ": " << value;
}

std::vector<std::string> AllShownBefore(const std::vector<Result>& results) {
    std::vector<std::string> all;
    for (const Result& result : results) {
        if (result.shown != nullptr) all.push_back(ShownBefore(result.type));
    }
    return all;
}

}  // namespace

const char* ShownBefore(const std::string& type) {
    if (type == "int") return "-77777";
    if (type == "uint") return "77777";
    if (type == "bool") return "true";
    if (type == "double") return "0.0625";
    if (type == "string") return "\"before\"";
    if (type == "pointer") return "0xbef0";
    if (type == "flag") return "true";
    if (type == "count") return "[-77777]";
    if (type == "pairs") return "[-77777/-77777]";
    if (type == "length") return "\"before\"";
    if (type == "few") return "77777";
    return "no type";
}

std::vector<Row> RowsOf(const std::vector<Row>& rows, const std::string& form) {
    std::vector<Row> chosen;
    for (const Row& row : rows) {
        if (row.form == form) chosen.push_back(row);
    }
    return chosen;
}

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.operation;
}

std::string NameOf(const ::testing::TestParamInfo<Row>& info) {
    return info.param.operation;
}

void PrintTo(const TextRow& row, std::ostream* out) {
    *out << row.operation;
}

std::string NameOfTextRow(const ::testing::TestParamInfo<TextRow>& info) {
    return info.param.operation;
}

void ExpectTheProtocolsOperations(const std::vector<Row>& rows) {
    std::vector<std::string> expected;
    const Json::Value protocol = ReadProtocolFile(UnderTest().protocol);
    for (const Json::Value& operation : protocol["operations"]) {
        expected.push_back(operation["name"].asString());
    }
    std::vector<std::string> names;
    for (const Row& row : rows) names.push_back(row.operation);
    EXPECT_EQ(names, expected);
}

void ExpectTheProtocolsEndpoint(const char* name, int key, const char* socket, int port, const char* servedBy) {
    const Json::Value protocol = ReadProtocolFile(UnderTest().protocol);
    const Json::Value& endpoint = protocol["endpoints"][name];
    EXPECT_EQ(endpoint["key"].asInt(), key);
    EXPECT_EQ(endpoint["socket"].asString(), socket);
    EXPECT_EQ(endpoint["port"].asInt(), port);
    EXPECT_EQ(endpoint["served_by"].asString(), servedBy);
}

void ExpectNoEventsInTheProtocol() {
    const Json::Value protocol = ReadProtocolFile(UnderTest().protocol);
    EXPECT_FALSE(protocol["endpoints"].isMember("events"));
    EXPECT_FALSE(protocol.isMember("events"));
}

void ExpectTheProtocolsCodes(std::optional<int> type, const std::vector<int>& codes, const char* codeKey) {
    const Json::Value protocol = ReadProtocolFile(UnderTest().protocol);
    EXPECT_EQ(protocol["envelope"].isMember("type"), type.has_value());
    if (type) {
        EXPECT_EQ(protocol["envelope"]["type"]["key"].asString(), "type");
        EXPECT_EQ(protocol["envelope"]["type"]["value"].asInt(), *type);
    }
    EXPECT_EQ(protocol["envelope"]["code"]["key"].asString(), codeKey);
    std::vector<int> written;
    for (const Json::Value& operation : protocol["operations"]) written.push_back(operation["code"].asInt());
    EXPECT_EQ(written, codes);
}

std::vector<int> Codes(int first, int last) {
    std::vector<int> codes;
    for (int code = first; code <= last; ++code) codes.push_back(code);
    return codes;
}

void ExpectTheProtocolsExample(const char* operation, const std::function<Outcome()>& call, const char* request,
                               const std::vector<std::string>& results) {
    const ScratchDirectory directory;
    const Json::Value protocol = ReadProtocolFile(UnderTest().protocol);
    const Json::Value& example = protocol["examples"]["request"];
    EXPECT_EQ(example["operation"].asString(), operation);
    FakePlatform platform(protocol["endpoints"]["requests"]["socket"].asString(), example["reply"].toStyledString());
    const Outcome outcome = call();
    UnderTest().deleteInstance();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.results, results);
    ASSERT_EQ(platform.Frames().size(), 1u);
    EXPECT_EQ(platform.Frames()[0].payload, Styled(request));
    EXPECT_EQ(platform.Frames()[0].payload, example["document"].toStyledString());
}

RowTest::RowTest()
    : mProtocol(ReadProtocolFile(UnderTest().protocol)),
      mSocket(mProtocol["endpoints"]["requests"]["socket"].asString()) {}

std::string RowTest::ReplyWith(const std::string& ret) const {
    WrittenMembers members;
    if (!ret.empty()) members.emplace_back("ret", ret);
    for (const Result& result : GetParam().results) members.emplace_back(result.key, result.json);
    return ObjectOf(members);
}

bool RowTest::IsOneWay() const {
    return std::string(GetParam().form) == "one-way";
}

void RowTest::ExpectResults(const Outcome& outcome, int status) const {
    EXPECT_EQ(outcome.status, status);
    std::vector<std::string> expected;
    for (const Result& result : GetParam().results) {
        if (result.shown != nullptr) expected.emplace_back(result.shown);
    }
    EXPECT_EQ(outcome.results, expected);
}

void RowTest::ExpectUntouched(const Outcome& outcome, int status) const {
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.results, AllShownBefore(GetParam().results));
}

TEST_P(Request, IsARowOfTheProtocol) {
    const Json::Value operation = OperationOf(mProtocol, GetParam().operation);
    ASSERT_TRUE(operation.isObject());
    EXPECT_EQ(operation["form"].asString(), GetParam().form);
    EXPECT_NE(operation["doc"].asString(), "");

    WrittenMembers written = MembersOf(GetParam().request);
    const Json::Value& envelope = mProtocol["envelope"];
    if (envelope.isMember("type")) {
        ASSERT_FALSE(written.empty());
        EXPECT_EQ(written[0].first, envelope["type"]["key"].asString());
        EXPECT_EQ(written[0].second, std::to_string(envelope["type"]["value"].asInt()));
        written.erase(written.begin());
    }
    ASSERT_FALSE(written.empty());
    EXPECT_EQ(written[0].first, envelope["code"]["key"].asString());
    EXPECT_EQ(written[0].second, std::to_string(operation["code"].asInt()));
    written.erase(written.begin());

    const std::vector<Json::Value> members = MembersAsWritten(operation["request"], written);
    ASSERT_EQ(written.size(), members.size());
    for (size_t i = 0; i < written.size(); ++i) {
        ExpectWrittenAs(members[i], written[i].first, written[i].second);
    }
    WrittenMembers writtenReply;
    for (const Result& result : GetParam().results) writtenReply.emplace_back(result.key, result.json);
    const std::vector<Json::Value> reply = MembersAsWritten(operation["reply"], writtenReply);
    ASSERT_EQ(GetParam().results.size(), reply.size());
    for (size_t i = 0; i < reply.size(); ++i) {
        const Result& result = GetParam().results[i];
        const std::string type = result.type;
        EXPECT_EQ(reply[i]["type"].asString(), TypeAsWritten(type));
        EXPECT_EQ(reply[i]["out"].asString().empty(), Counts(TypeAsWritten(type)));
        ExpectWrittenAs(reply[i], result.key, result.json);
        if (type == "few") {
            EXPECT_EQ(reply[i]["max"].asInt(), 65536);
        }
    }
}

TEST_P(Request, IsWhatTheProtocolSays) {
    FakePlatform platform(mSocket, ReplyWith("0"));
    GetParam().call();
    ASSERT_TRUE(platform.WaitForFrames(1));
    const std::vector<Frame> frames = platform.Frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].type, IsOneWay() ? kOneWay : kRequest);
    EXPECT_EQ(frames[0].port, mProtocol["endpoints"]["requests"]["port"].asInt());
    EXPECT_EQ(frames[0].payload, Styled(GetParam().request));
}

TEST_P(Request, StandsBetweenEnterAndLeaveInTheLog) {
    LogCapture log;
    std::atomic<int> entered{0};
    std::atomic<int> left{0};
    FakePlatform platform(mSocket, [&](const Frame&) {
        entered = log.Count(ANDROID_LOG_VERBOSE, UnderTest().tag, "ENTER");
        left = log.Count(ANDROID_LOG_VERBOSE, UnderTest().tag, "LEAVE");
        return ReplyWith("0");
    });
    GetParam().call();
    EXPECT_EQ(entered, IsOneWay() ? 0 : 1);
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
        EXPECT_EQ(line.function, GetParam().operation);
        EXPECT_EQ(line.text,
                  "[tolm](" + line.file + ":" + std::to_string(line.line) + ") " + line.function + ": " + line.message);
    }
}

TEST_P(Reply, GivesTheResults) {
    FakePlatform platform(mSocket, ReplyWith("0"));
    ExpectResults(GetParam().call(), 0);
}

TEST_P(Reply, MayHoldWhatNobodyReads) {
    FakePlatform platform(mSocket, WithMember(WithMember(ReplyWith("0"), "more", "[1, {\"ret\": 5}]"), "Ret", "9"));
    ExpectResults(GetParam().call(), 0);
}

TEST_P(Reply, IsReadLeniently) {
    FakePlatform platform(mSocket, ReplyWith("0"));
    for (size_t i = 0; i < GetParam().results.size(); ++i) {
        const Result& result = GetParam().results[i];
        // Lists have tests of their own.
        if (result.shown == nullptr || Counts(TypeAsWritten(result.type))) continue;
        for (const Reading& reading : ReadingsOf(result.type, ShownBefore(result.type))) {
            SCOPED_TRACE(std::string(result.key) + ": " + reading.json);
            platform.SetReply(WithMember(ReplyWith("0"), result.key, reading.json));
            const Outcome outcome = GetParam().call();
            EXPECT_EQ(outcome.status, reading.shown != nullptr ? 0 : -1);
            ASSERT_GT(outcome.results.size(), i);
            EXPECT_EQ(outcome.results[i], reading.shown != nullptr ? reading.shown : ShownBefore(result.type));
        }
    }
    // The call without a result does not look at other members.
    platform.SetReply("{\"ret\": 0}");
    const bool fails = !GetParam().results.empty() && std::string(GetParam().results[0].type) == "pointer";
    EXPECT_EQ(GetParam().call().status, fails ? -1 : 0);
}

TEST_P(Reply, GivesTextsUnchanged) {
    FakePlatform platform(mSocket, "");
    for (size_t i = 0; i < GetParam().results.size(); ++i) {
        const Result& result = GetParam().results[i];
        if (result.shown == nullptr || std::string(result.type) != "string") continue;
        for (const WireText& text : WireTexts()) {
            SCOPED_TRACE(text.name);
            platform.SetReply(WithMember(ReplyWith("0"), result.key, text.onTheWire));
            const Outcome outcome = GetParam().call();
            EXPECT_EQ(outcome.status, 0);
            ASSERT_GT(outcome.results.size(), i);
            EXPECT_EQ(outcome.results[i], Show(text.readBack));
        }
        // A platform need not escape what is not ASCII.
        platform.SetReply(WithMember(ReplyWith("0"), result.key, "\"K\xc3\xb6ln \xe2\x82\xac \xf0\x9f\x93\xba\""));
        EXPECT_EQ(GetParam().call().results[i], "\"K\xc3\xb6ln \xe2\x82\xac \xf0\x9f\x93\xba\"");
    }
}

TEST_P(Reply, WithAnotherRetWritesNoResults) {
    const std::vector<std::pair<const char*, int>> rets = {
        {"1", 1}, {"3", 3}, {"-1", -1}, {"-5", -5}, {"2147483647", 2147483647}, {"-2147483648", -2147483647 - 1},
    };
    FakePlatform platform(mSocket, "");
    for (const auto& [ret, status] : rets) {
        SCOPED_TRACE(ret);
        platform.SetReply(ReplyWith(ret));
        ExpectUntouched(GetParam().call(), GetParam().failsWithMinusOne ? -1 : status);
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
        ExpectUntouched(GetParam().call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 1 1 0"), ++failures) << log.Text();
    }
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Reply, ThatIsNoObjectIsAFailure) {
    LogCapture log;
    FakePlatform platform(mSocket, "");
    int failures = 0;
    for (const char* reply : {"null", "0", "true", "\"ret\"", "[]", "[{\"ret\": 0}]"}) {
        SCOPED_TRACE(reply);
        platform.SetReply(reply);
        ExpectUntouched(GetParam().call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 1 1 0"), ++failures) << log.Text();
    }
    // No failure of the connection: the next reply comes over the same one.
    platform.SetReply(ReplyWith("0"));
    ExpectResults(GetParam().call(), 0);
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Reply, ThatIsNoJsonIsAFailure) {
    LogCapture log;
    FakePlatform platform(mSocket, "");
    const std::string tooDeep = "{\"ret\": 0, \"a\": " + std::string(1001, '[') + std::string(1001, ']') + "}";
    int failures = 0;
    for (const std::string& reply :
         {std::string("nonsense"), std::string("{\"ret\": 0"), std::string("{ret: 0}"), std::string(" "),
          std::string(1, '\0'), std::string("\xff\xfe"), std::string("{\"ret\": 1e999}"), tooDeep}) {
        SCOPED_TRACE(reply.substr(0, 40));
        platform.SetReply(reply);
        ExpectUntouched(GetParam().call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 1 0 1"), ++failures) << log.Text();
    }
    platform.SetReply(ReplyWith("0"));
    ExpectResults(GetParam().call(), 0);
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Reply, OfSizeZeroIsAClosedConnection) {
    LogCapture log;
    FakePlatform platform(mSocket, "");
    ExpectUntouched(GetParam().call(), -1);
    EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 0 1 1"), 1) << log.Text();
    platform.SetReply(ReplyWith("0"));
    ExpectResults(GetParam().call(), 0);
    EXPECT_EQ(platform.Connections(), 2);
}

// Not every family has such operations.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneWay);

TEST_P(OneWay, NeedsNoReply) {
    FakePlatform platform(mSocket, "");
    for (size_t times = 1; times <= 3; ++times) {
        ExpectResults(GetParam().call(), 0);
        ASSERT_TRUE(platform.WaitForFrames(times));
        EXPECT_EQ(platform.Frames().back().type, kOneWay);
    }
    EXPECT_EQ(platform.Connections(), 1);
}

TEST_P(Texts, StandOnTheWireAsJsonStrings) {
    const Json::Value protocol = ReadProtocolFile(UnderTest().protocol);
    FakePlatform platform(protocol["endpoints"]["requests"]["socket"].asString(), "{\"ret\": 0}");
    for (const WireText& text : WireTexts()) {
        SCOPED_TRACE(text.name);
        WrittenMembers members = MembersOf(GetParam().request);
        int texts = 0;
        for (auto& [key, value] : members) {
            if (value != "\"\"") continue;
            value = text.onTheWire;
            ++texts;
        }
        EXPECT_GT(texts, 0);
        platform.ForgetFrames();
        GetParam().call(text.text);
        ASSERT_TRUE(platform.WaitForFrames(1));
        ASSERT_EQ(platform.Frames().size(), 1u);
        EXPECT_EQ(platform.Frames()[0].payload, Styled(ObjectOf(members)));
    }
}

// What nobody waits for fails without a line of the JSON base.
TEST_P(PlatformProcess, MayBeDownAndComeBack) {
    const int lines = IsOneWay() ? 0 : 1;
    LogCapture log;
    ExpectUntouched(GetParam().call(), -1);
    EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 0 1 1"), lines) << log.Text();
    for (int i = 0; i < 2; ++i) {
        {
            FakePlatform platform(mSocket, ReplyWith("0"));
            ExpectResults(GetParam().call(), 0);
            ASSERT_TRUE(platform.WaitForFrames(1));
            EXPECT_EQ(platform.Frames().size(), 1u);
        }
        log.Clear();
        ExpectUntouched(GetParam().call(), -1);
        EXPECT_EQ(log.Count(ANDROID_LOG_WARN, kJsonTag, "SendIpc failed 0 1 1"), lines) << log.Text();
    }
}

}  // namespace hbbtv::test
