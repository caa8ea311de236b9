// The operations of a family, one row for each: the adaptor's function. Everything else comes from protocol/, and the
// values are generated from it; a row adds only how its parameters differ from the members of the request. The same
// rows serve the tests of the adaptors (tests/wire) and those of the HIDL interfaces (tests/service).
#pragma once

#include <json/value.h>

#include <string>
#include <utility>
#include <vector>

#include "adaptor_call.h"
#include "values.h"
#include "wire/protocol.h"

namespace hbbtv::test {

// The value of a parameter that is not sent.
constexpr int kNotSent = -99999;

class Row {
  public:
    template <typename Adaptor, typename... P>
    Row(const char* operation, int (Adaptor::*function)(P...))
        : mOperation(operation), mCall(CallOf(function)), mValues(CountValues(function)) {}

    Row(const char* operation, AdaptorCall call) : mOperation(operation), mCall(std::move(call)) {}

    // The arguments of the request that the parameters take, where these are not all of them in their order: "" for one
    // that is not sent. This holds for the HIDL method, too.
    Row& Takes(std::vector<std::string> arguments);

    // An argument that needs a value of its own.
    Row& Sends(const char* argument, Json::Value value);

    // The members that the fields of the HIDL method's struct take.
    Row& TakesFields(std::vector<std::string> members);

    // What a HIDL method gives that fails, where that is not zero: numbers, or the names of arguments ("" as above).
    Row& FailsWith(std::vector<Json::Value> results);

    // Any other "ret" than 0 gives -1 instead of itself.
    Row& FailsWithMinusOne();

    // Strings of the request end at their first zero byte.
    Row& CutsTextsAtZero();

    const std::string& Name() const { return mOperation; }
    const Json::Value& Operation() const;  // of protocol/; null when it is missing there
    bool IsOneWay() const { return Operation()["form"] == "one-way"; }
    bool FailsOnlyWithMinusOne() const { return mFailsWithMinusOne; }
    bool TextsEndAtZero() const { return mTextsEndAtZero; }

    // Returns the arguments that the parameters take, in the order of these.
    std::vector<std::string> Parameters() const;
    // Returns how many values the adaptor's parameters take; -1 when that is not known.
    int CountOfValues() const { return mValues; }

    // Values for the request and the reply.
    Json::Value Request(int trueBool = kAllBools) const;
    Json::Value Reply(bool bools) const;

    // The documents with these values.
    std::string RequestText(const Json::Value& values) const;
    Json::Value ReplyDocument(const Json::Value& values) const;

    // Calls the adaptor with these values, or with those of Request().
    Outcome Call(const Json::Value& values) const;
    Outcome Call() const { return Call(Request()); }

    const std::vector<std::string>& Fields() const { return mFields; }
    const std::vector<Json::Value>& ResultsOfFailure() const { return mResultsOfFailure; }

  private:
    std::string mOperation;
    AdaptorCall mCall;
    int mValues = -1;
    bool mHasParameters = false;
    std::vector<std::string> mParameters;
    std::vector<std::string> mFields;
    std::vector<Json::Value> mResultsOfFailure;
    Json::Value mOwnValues{Json::objectValue};
    bool mFailsWithMinusOne = false;
    bool mTextsEndAtZero = false;
};

struct FamilyUnderTest {
    const char* name;          // of the protocol file
    const char* tag;           // of the adaptor's log lines
    const char* sourceFile;    // that these name
    void (*deleteInstance)();  // ends the adaptor
    std::vector<Row> rows;
    std::vector<std::string> silentMethods = {};  // of the HIDL interface: they send nothing

    const WireFamily& Wire() const { return FindFamily(name); }
    const Row& RowOf(const std::string& operation) const;

    // Of its requests.
    std::string Socket() const;
    int Port() const;
};

// Defined once for each family.
const FamilyUnderTest& UnderTest();

}  // namespace hbbtv::test
