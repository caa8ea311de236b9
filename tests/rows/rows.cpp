#include "rows.h"

#include <algorithm>
#include <stdexcept>

#include "wire/endpoint.h"
#include "wire/message.h"

namespace hbbtv::test {

namespace {

// The values of a request, and those of a reply.
int SeedOf(const Json::Value& operation, bool reply) {
    return 100 * operation["code"].asInt() + (reply ? 50 : 0);
}

}  // namespace

Row& Row::Takes(std::vector<std::string> arguments) {
    mHasParameters = true;
    mParameters = std::move(arguments);
    return *this;
}

Row& Row::Sends(const char* argument, Json::Value value) {
    mOwnValues[argument] = std::move(value);
    return *this;
}

Row& Row::TakesFields(std::vector<std::string> members) {
    mFields = std::move(members);
    return *this;
}

Row& Row::FailsWith(std::vector<Json::Value> results) {
    mResultsOfFailure = std::move(results);
    return *this;
}

Row& Row::FailsWithMinusOne() {
    mFailsWithMinusOne = true;
    return *this;
}

Row& Row::CutsTextsAtZero() {
    mTextsEndAtZero = true;
    return *this;
}

const Json::Value& Row::Operation() const {
    const Json::Value* operation = UnderTest().Wire().Operation(mOperation);
    return operation != nullptr ? *operation : Json::Value::nullSingleton();
}

std::vector<std::string> Row::Parameters() const {
    return mHasParameters ? mParameters : ArgumentNames(Operation()["request"]);
}

Json::Value Row::Request(int trueBool) const {
    Json::Value values = ValuesFor(Operation()["request"], SeedOf(Operation(), false), trueBool);
    for (const std::string& name : mOwnValues.getMemberNames()) values[name] = mOwnValues[name];
    return values;
}

Json::Value Row::Reply(bool bools) const {
    return ValuesFor(Operation()["reply"], SeedOf(Operation(), true), bools ? kAllBools : kNoBool);
}

std::string Row::RequestText(const Json::Value& values) const {
    return WireText(MakeRequest(UnderTest().Wire(), Operation(), values));
}

Json::Value Row::ReplyDocument(const Json::Value& values) const {
    Json::Value reply(Json::objectValue);
    reply["ret"] = 0;
    AddMembers(Operation()["reply"], values, reply);
    return reply;
}

Outcome Row::Call(const Json::Value& values) const {
    Json::Value arguments(Json::arrayValue);
    for (const std::string& name : Parameters()) arguments.append(name.empty() ? Json::Value(kNotSent) : values[name]);
    return mCall(arguments);
}

const Row& FamilyUnderTest::RowOf(const std::string& operation) const {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const Row& r) { return r.Name() == operation; });
    if (row == rows.end()) throw std::logic_error("no row " + operation);
    return *row;
}

std::string FamilyUnderTest::Socket() const {
    return RequestsOf(Wire()).socket;
}

int FamilyUnderTest::Port() const {
    return RequestsOf(Wire()).port;
}

}  // namespace hbbtv::test
