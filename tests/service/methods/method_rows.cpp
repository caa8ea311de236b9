#include "method_rows.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <new>
#include <sstream>

#include "common/text/json.h"
#include "package/bindings.h"
#include "package/description.h"

namespace {

std::atomic<bool> gNoMemory{false};

}  // namespace

// What adaptors are created with; everything else uses the throwing form.
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return gNoMemory ? nullptr : ::operator new(size);
}

namespace hbbtv::test {

namespace {

// A method of the interface and the row of its operation.
struct MethodRow {
    const Method* method;
    const Row* row;
};

void PrintTo(const MethodRow& row, std::ostream* out) {
    *out << row.method->name;
}

std::string NameOf(const testing::TestParamInfo<MethodRow>& info) {
    return info.param.method->name;
}

const Interface& InterfaceUnderTest() {
    static const Interface& interface = *Package::Get().InterfaceOf(UnderTest().Wire());
    return interface;
}

// The methods that have an operation, and the names of those that have none.
struct Methods {
    std::vector<MethodRow> rows;
    std::vector<std::string> silent;
};

Methods FindMethods() {
    Methods methods;
    for (const Method& method : InterfaceUnderTest().methods) {
        const Json::Value* operation = UnderTest().Wire().OperationOf(method.name);
        if (operation == nullptr) {
            methods.silent.push_back(method.name);
        } else {
            methods.rows.push_back({&method, &UnderTest().RowOf((*operation)["name"].asString())});
        }
    }
    return methods;
}

const Methods& MethodsUnderTest() {
    static const Methods methods = FindMethods();
    return methods;
}

std::vector<MethodRow> RowsOf(bool (*chosen)(const Row& row)) {
    std::vector<MethodRow> rows;
    std::copy_if(MethodsUnderTest().rows.begin(), MethodsUnderTest().rows.end(), std::back_inserter(rows),
                 [&](const MethodRow& row) { return chosen(*row.row); });
    return rows;
}

CallOutcome Call(const std::string& name, const Json::Value& arguments) {
    static NoEvents sink;
    const std::vector<MethodBinding>& methods = AllBindings().at(InterfaceUnderTest().name)->methods;
    const auto method = std::find_if(methods.begin(), methods.end(),
                                     [&](const MethodBinding& candidate) { return candidate.name == name; });
    CallOutcome outcome = method->invoke(*MakeService(), arguments, sink);
    EXPECT_TRUE(outcome.answered) << outcome.error;
    return outcome;
}

// A value of the wire as a client passes it. Of a handle the platform gets the low half only.
Json::Value ToHidl(const Type& type, const Json::Value& value, const Row& row) {
    if (type.kind == Type::Kind::Vector) {
        Json::Value list(Json::arrayValue);
        for (const Json::Value& element : value) list.append(ToHidl(*type.element, element, row));
        return list;
    }
    if (type.kind == Type::Kind::Struct) {
        Json::Value fields(Json::objectValue);
        for (size_t i = 0; i < type.fields.size(); ++i) {
            fields[type.fields[i].name] = ToHidl(*type.fields[i].type, value[row.Fields()[i]], row);
        }
        return fields;
    }
    if (type.kind == Type::Kind::Bool) return value.asBool();
    if (type.name != "int64_t") return value;
    const uint64_t high = value.asUInt64() % 2 == 0 ? 0x7777777700000000 : 0xfedcba9800000000;
    return Json::Int64(high | value.asUInt64());
}

// The arguments of the method: a callback, where it takes one, and values of the row.
Json::Value ArgumentsOf(const MethodRow& methodRow, const Json::Value& values) {
    const std::vector<std::string> names = methodRow.row->Parameters();
    size_t next = 0;
    const auto take = [&](const Type& type) {
        const std::string name = next < names.size() ? names[next] : "";
        ++next;
        return ToHidl(type, name.empty() ? Json::Value(kNotSent) : values[name], *methodRow.row);
    };
    Json::Value arguments(Json::arrayValue);
    for (const Parameter& parameter : methodRow.method->arguments) {
        if (parameter.type->kind == Type::Kind::Callback) {
            arguments.append("@listen");
        } else if (parameter.type->kind == Type::Kind::Struct) {
            Json::Value fields(Json::objectValue);
            for (const Parameter& field : parameter.type->fields) fields[field.name] = take(*field.type);
            arguments.append(fields);
        } else {
            arguments.append(take(*parameter.type));
        }
    }
    EXPECT_EQ(next, names.size()) << "arguments of the request";
    return arguments;
}

// A result as the method's type holds it.
Json::Value ToResult(const Type& type, const Json::Value& value) {
    if (type.kind == Type::Kind::Bool) return value.asBool();
    if (type.kind == Type::Kind::Text && value.isArray()) {
        std::string bytes;
        for (const Json::Value& number : value) bytes += static_cast<char>(number.asInt());
        return bytes;
    }
    const bool isBits = type.kind == Type::Kind::Integer && type.bits == 32 && !type.isSigned;
    return isBits ? Json::Value(static_cast<unsigned>(value.asInt64())) : value;
}

Json::Value Zero(const Type& type) {
    if (type.kind == Type::Kind::Bool) return false;
    if (type.kind == Type::Kind::Real) return 0.0;
    if (type.kind == Type::Kind::Text) return "";
    return type.kind == Type::Kind::Vector ? Json::Value(Json::arrayValue) : Json::Value(0);
}

// The results behind the status, from these values of the reply.
std::string Success(const MethodRow& methodRow, const Json::Value& values) {
    const std::vector<std::string> names = ArgumentNames(methodRow.row->Operation()["reply"]);
    const std::vector<Parameter>& results = methodRow.method->results;
    EXPECT_EQ(results.size(), names.size() + 1);
    Json::Value all(Json::arrayValue);
    all.append(0);
    for (size_t i = 1; i < results.size(); ++i) all.append(ToResult(*results[i].type, values[names.at(i - 1)]));
    return WriteJson(all);
}

std::string FailureWith(int status, const MethodRow& methodRow) {
    const std::vector<Parameter>& results = methodRow.method->results;
    Json::Value all(Json::arrayValue);
    all.append(status);
    for (size_t i = 1; i < results.size(); ++i) {
        if (methodRow.row->ResultsOfFailure().empty()) {
            all.append(Zero(*results[i].type));
            continue;
        }
        const Json::Value& result = methodRow.row->ResultsOfFailure()[i - 1];
        if (result == "") {
            all.append(kNotSent);
        } else {
            all.append(result.isString() ? methodRow.row->Request()[result.asString()] : result);
        }
    }
    return WriteJson(all);
}

class Method : public testing::TestWithParam<MethodRow> {
  protected:
    ~Method() override { UnderTest().deleteInstance(); }

    const Row& TheRow() const { return *GetParam().row; }

    // The results of a call with these values; a result callback has been called once.
    std::string AnswerTo(const Json::Value& values) const {
        const CallOutcome outcome = Call(GetParam().method->name, ArgumentsOf(GetParam(), values));
        EXPECT_EQ(outcome.answers, 1);
        return WriteJson(outcome.results);
    }
    std::string Answer() const { return AnswerTo(TheRow().Request()); }

    std::string ReplyWith(int ret) const {
        Json::Value reply = TheRow().ReplyDocument(TheRow().Reply(true));
        reply["ret"] = ret;
        return reply.toStyledString();
    }

    void ExpectTheOneRequest(const FakePlatform& platform, const Json::Value& values) const {
        ASSERT_TRUE(platform.WaitForFrames(1));
        ASSERT_EQ(platform.Frames().size(), 1u);
        EXPECT_EQ(platform.Frames()[0].payload, TheRow().RequestText(values));
        EXPECT_EQ(platform.Frames()[0].type, TheRow().IsOneWay() ? kOneWay : kRequest);
        EXPECT_EQ(platform.Frames()[0].port, UnderTest().Port());
    }

    const ScratchDirectory& mDirectory = DirectoryOfThisProgram();
};

// Of the methods whose result is a handle.
class HandleMethod : public Method {
  protected:
    // The platform's reply, with another value in place of each handle.
    std::string ReplyWithHandles(Json::Value (*change)(const std::string& handle)) const {
        Json::Value reply = TheRow().ReplyDocument(TheRow().Reply(true));
        for (const Json::Value& member : TheRow().Operation()["reply"]) {
            Json::Value& value = reply[member["key"].asString()];
            if (member["type"] == "pointer") value = change(value.asString());
        }
        return reply.toStyledString();
    }
};

// Of the methods that do not wait for the platform.
class OneWayMethod : public Method {};

}  // namespace

NoMemoryForAdaptors::NoMemoryForAdaptors() {
    gNoMemory = true;
}

NoMemoryForAdaptors::~NoMemoryForAdaptors() {
    gNoMemory = false;
}

std::string Answer(const std::string& method, const Json::Value& arguments) {
    return WriteJson(Call(method, arguments).results);
}

Json::Value Parsed(const std::string& text) {
    return ParseJson(text);
}

TEST_P(Method, AsksThePlatformAndAnswersOnce) {
    FakePlatform platform(UnderTest().Socket(), ReplyWith(0));
    for (int trueBool = kNoBool; trueBool < CountBools(TheRow().Operation()["request"]); ++trueBool) {
        const Json::Value values = TheRow().Request(trueBool);
        platform.ForgetFrames();
        EXPECT_EQ(AnswerTo(values), Success(GetParam(), TheRow().Reply(true)));
        ExpectTheOneRequest(platform, values);
    }
}

TEST_P(Method, PassesThePlatformsStatusOnWithZeroResults) {
    FakePlatform platform(UnderTest().Socket(), ReplyWith(17));
    EXPECT_EQ(Answer(), FailureWith(TheRow().FailsOnlyWithMinusOne() ? -1 : 17, GetParam()));
}

TEST_P(Method, GivesMinusOneAndZeroWhenThePlatformIsDown) {
    EXPECT_EQ(Answer(), FailureWith(-1, GetParam()));
}

TEST_P(Method, GivesMinusOneAndZeroWithoutAnAdaptor) {
    FakePlatform platform(UnderTest().Socket(), ReplyWith(0));
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(Answer(), FailureWith(-1, GetParam()));
    EXPECT_TRUE(platform.Frames().empty());
}

TEST_P(HandleMethod, GivesItWithAZeroHighHalf) {
    FakePlatform platform(UnderTest().Socket(), ReplyWithHandles([](const std::string& handle) {
                              return Json::Value("0x12345678" + handle.substr(2));
                          }));
    EXPECT_EQ(Answer(), Success(GetParam(), TheRow().Reply(true)));
}

TEST_P(HandleMethod, GivesNoneWhenThePlatformSendsANumber) {
    FakePlatform platform(UnderTest().Socket(), ReplyWithHandles([](const std::string&) { return Json::Value(5); }));
    EXPECT_EQ(Answer(), FailureWith(-1, GetParam()));
}

TEST_P(OneWayMethod, SendsTheRequestAndDoesNotWait) {
    FakePlatform platform(UnderTest().Socket(), [](const Frame&) { return std::nullopt; });
    const Json::Value values = TheRow().Request();
    EXPECT_EQ(AnswerTo(values), "[0]");
    ExpectTheOneRequest(platform, values);
}

TEST_P(OneWayMethod, GivesMinusOneWhenThePlatformIsDown) {
    EXPECT_EQ(Answer(), "[-1]");
}

TEST_P(OneWayMethod, GivesMinusOneWithoutAnAdaptor) {
    FakePlatform platform(UnderTest().Socket(), "");
    const NoMemoryForAdaptors noMemory;
    EXPECT_EQ(Answer(), "[-1]");
    EXPECT_TRUE(platform.Frames().empty());
}

bool Waits(const Row& row) {
    return !row.IsOneWay();
}

bool GivesHandles(const Row& row) {
    const Json::Value& reply = row.Operation()["reply"];
    return std::any_of(reply.begin(), reply.end(),
                       [](const Json::Value& member) { return member["type"] == "pointer"; });
}

INSTANTIATE_TEST_SUITE_P(Rows, Method, testing::ValuesIn(RowsOf(&Waits)), NameOf);
INSTANTIATE_TEST_SUITE_P(Rows, HandleMethod, testing::ValuesIn(RowsOf(&GivesHandles)), NameOf);
INSTANTIATE_TEST_SUITE_P(Rows, OneWayMethod, testing::ValuesIn(RowsOf([](const Row& row) { return row.IsOneWay(); })),
                         NameOf);

// Not every interface has such methods.
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Method);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(HandleMethod);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(OneWayMethod);

TEST(MethodTable, HasARowForEachMethodThatSendsSomething) {
    EXPECT_EQ(MethodsUnderTest().silent, UnderTest().silentMethods);
}

}  // namespace hbbtv::test
