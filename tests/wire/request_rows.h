// The requests of a family, held to its protocol file and to the wire, row by row. A program of a family compiles
// request_rows.cpp, says what it tests (UnderTest()) and instantiates the suites at the end for its table of rows.
#pragma once

#include <gtest/gtest.h>

#include <json/json.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lenient_readings.h"
#include "raw_socket.h"
#include "scratch_directory.h"

namespace hbbtv::test {

struct FamilyUnderTest {
    const char* protocol;      // name of its protocol file
    const char* tag;           // of its log lines
    const char* sourceFile;    // that its log lines name
    void (*deleteInstance)();  // ends its adaptor
};

const FamilyUnderTest& UnderTest();

// A handle, as operations take it.
inline const void* Handle(uint32_t bits) {
    return reinterpret_cast<const void*>(static_cast<uintptr_t>(bits));
}

// What a call gave: its status, and its results as text.
struct Outcome {
    int status;
    std::vector<std::string> results;
};

// A result in the platform's reply.
struct Result {
    const char* key;

    // As in the protocol file; or "flag" for an int of which only zero matters, "count" or "pairs" for one that says
    // how many numbers or pairs of numbers a list has; "length" for one that says how many bytes a text has; "few" for
    // a uint of at most 65536.
    const char* type;
    const char* json;   // the value in the reply
    const char* shown;  // what the caller gets, as text; null for a part of the list that was counted before
};

struct Row {
    const char* operation;
    std::function<Outcome()> call;
    // The request as a line of JSON, members in the protocol's order. So that types can be told apart, an int is
    // negative, a uint has its top bit set (but for one that counts), and so has a pointer.
    const char* request;
    std::vector<Result> results;
    const char* form = "request";    // as in the protocol file
    bool failsWithMinusOne = false;  // whether any other "ret" than 0 gives -1 instead of itself
};

// An operation that takes texts.
struct TextRow {
    const char* operation;
    std::function<void(const std::string& text)> call;
    const char* request;  // as in a row, with "" in place of each text
};

// What a result variable holds before the call.
template <typename T>
T Before();
template <>
inline int Before() {
    return -77777;
}
template <>
inline unsigned Before() {
    return 77777;
}
template <>
inline bool Before() {
    return true;
}
template <>
inline double Before() {
    return 0.0625;
}
template <>
inline std::string Before() {
    return "before";
}
template <>
inline void* Before() {
    return reinterpret_cast<void*>(0xbef0);
}
template <>
inline std::vector<int> Before() {
    return {-77777};
}
template <>
inline std::vector<std::pair<int, int>> Before() {
    return {{-77777, -77777}};
}

// The same as text, for a type of a result.
const char* ShownBefore(const std::string& type);

// The call of an operation without a result.
template <typename Adaptor, typename Operation, typename... Arguments>
std::function<Outcome()> Tell(Operation operation, Arguments... arguments) {
    return [operation, arguments...]() mutable {
        return Outcome{(Adaptor::GetInstance()->*operation)(arguments...), {}};
    };
}

// The call of an operation with one result, its last parameter.
template <typename Adaptor, typename T, typename Operation, typename... Arguments>
std::function<Outcome()> Ask(Operation operation, Arguments... arguments) {
    return [operation, arguments...]() mutable {
        T result = Before<T>();
        const int status = (Adaptor::GetInstance()->*operation)(arguments..., result);
        return Outcome{status, {Show(result)}};
    };
}

// The call of an operation with two results of a type, its last parameters.
template <typename Adaptor, typename T, typename Operation, typename... Arguments>
std::function<Outcome()> AskTwo(Operation operation, Arguments... arguments) {
    return [operation, arguments...]() mutable {
        T first = Before<T>();
        T second = Before<T>();
        const int status = (Adaptor::GetInstance()->*operation)(arguments..., first, second);
        return Outcome{status, {Show(first), Show(second)}};
    };
}

// Those of a form of the protocol file.
std::vector<Row> RowsOf(const std::vector<Row>& rows, const std::string& form);

void PrintTo(const Row& row, std::ostream* out);
std::string NameOf(const ::testing::TestParamInfo<Row>& info);

// That every operation of the protocol file has a row, in the same order, and every row an operation.
void ExpectTheProtocolsOperations(const std::vector<Row>& rows);

// What the protocol file says of an endpoint, of the type and the codes, and of the example of a request.
void ExpectTheProtocolsEndpoint(const char* name, int key, const char* socket, int port, const char* servedBy);
void ExpectNoEventsInTheProtocol();
void ExpectTheProtocolsCodes(std::optional<int> type, const std::vector<int>& codes, const char* codeKey = "method");
std::vector<int> Codes(int first, int last);
void ExpectTheProtocolsExample(const char* operation, const std::function<Outcome()>& call, const char* request,
                               const std::vector<std::string>& results);

class RowTest : public ::testing::TestWithParam<Row> {
  protected:
    RowTest();
    ~RowTest() override { UnderTest().deleteInstance(); }

    // The reply of the row, or the same with other members.
    std::string ReplyWith(const std::string& ret) const;

    bool IsOneWay() const;

    void ExpectResults(const Outcome& outcome, int status) const;
    void ExpectUntouched(const Outcome& outcome, int status) const;

    ScratchDirectory mDirectory;
    const Json::Value mProtocol;
    const std::string mSocket;
};

class Request : public RowTest {};
class Reply : public RowTest {};
class OneWay : public RowTest {};
class PlatformProcess : public RowTest {};

void PrintTo(const TextRow& row, std::ostream* out);
std::string NameOfTextRow(const ::testing::TestParamInfo<TextRow>& info);

class Texts : public ::testing::TestWithParam<TextRow> {
  protected:
    ~Texts() override { UnderTest().deleteInstance(); }

    ScratchDirectory mDirectory;
};

}  // namespace hbbtv::test
