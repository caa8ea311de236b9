// The words in which an adaptor writes the rows of its wire table, and the base that carries a row out.
//
//     int TolmVideoBroadcastAdaptorIpc::GetVolume(const void* vb, unsigned& volume) {
//         return Call(16, {Pointer("vb_handle", vb)}, {ToUInt("volume", volume)});
//     }
//
// Keys are literals. Nothing is converted on the way: the word says the JSON type, and an argument of another type does
// not compile.
#pragma once

#include <json/json.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "ipc/src/tolm_base_client.h"
#include "ipc/src/tolm_family.h"
#include "ipc/tolm_log.h"

namespace tolm {

// An operation: its code on the wire, and its row's place for the log lines. A bare code converts to it.
struct Method {
    Method(int theCode, const char* file = __builtin_FILE(), int line = __builtin_LINE(),
           const char* function = __builtin_FUNCTION())
        : code(theCode), place{file, line, function} {}

    int code;
    Place place;
};

// A member of a request. Lives as long as the expression it stands in: texts are not copied.
struct Member {
    enum class Kind { kInt, kUInt, kBool, kReal, kText, kArray, kPointer, kNumberedInts, kNumberedPointers };

    const char* key;
    Kind kind;
    union {
        int asInt;
        unsigned asUInt;
        bool asBool;
        double asReal;
        const std::string* asText;
        const void* asPointer;
        const std::vector<int>* asInts;
        const std::vector<void*>* asPointers;
        const Json::Value* asArray;
    };
};

Member Int(const char* key, int value);
Member UInt(const char* key, unsigned value);
Member Bool(const char* key, bool value);
Member Real(const char* key, double value);
Member Text(const char* key, const std::string& value);
Member Pointer(const char* key, const void* value);
Member NumberedInts(const std::vector<int>& values);                         // k0, k1, ...: see ToNumberedInts()
Member NumberedPointers(const char* key, const std::vector<void*>& values);  // key0, key1, ...
Member Array(const char* key, const Json::Value& elements);                  // each of them an Object()
template <typename T>
Member Int(const char* key, T value) = delete;
template <typename T>
Member UInt(const char* key, T value) = delete;
template <typename T>
Member Bool(const char* key, T value) = delete;
template <typename T>
Member Real(const char* key, T value) = delete;

// An element of an array.
Json::Value Object(std::initializer_list<Member> members);

// A member of a reply or an event and the variable that it is read into. All but a pointer are read leniently: a member
// that is missing or cannot be converted gives 0, false or "". A pointer that is no text fails, and its variable keeps
// its value; null is the empty text. So does a count above kMostNumbered.
struct Target {
    const char* key;
    void* to;
    bool (*read)(const Json::Value& object, const char* key, void* to);
};

Target ToInt(const char* key, int& to);
Target ToUInt(const char* key, unsigned& to);
Target ToIntBits(const char* key, unsigned& to);  // an int of the wire: -1 gives 4294967295
Target ToCount(const char* key, unsigned& to);
Target ToInt64(const char* key, int64_t& to);
Target ToUInt64(const char* key, uint64_t& to);
Target ToBool(const char* key, bool& to);
Target ToFlag(const char* key, bool& to);  // of an int: whether it is not 0
Target ToReal(const char* key, double& to);
Target ToText(const char* key, std::string& to);
Target ToPointer(const char* key, void*& to);

// Appends the members k0, k1, ..., as many as the count says; one above kMostNumbered fails, and nothing is appended.
// The platform has room for three characters in such a name: k10 also stands for 100 to 109, for 1000 to 1099, ...
Target ToNumberedInts(const char* countKey, std::vector<int>& to);

// Lists of numbers on the wire are short. The count comes from outside, and no more than this is made of it.
constexpr int kMostNumbered = 65536;

// Reads all targets: whether none failed.
bool Read(const Json::Value& object, std::initializer_list<Target> targets);

// The client side of every adaptor.
class TolmAdaptorClient : public TolmBaseClient {
  protected:
    // `family` is kept by reference: a row of tolm_family.h.
    explicit TolmAdaptorClient(const Family& family);
    ~TolmAdaptorClient() = default;

    // Carries out an operation: logs ENTER and LEAVE, sends the request and waits for the reply. The status is the
    // platform's "ret", or -1 when there was no proper reply or a result failed. Results are read only on status 0.
    int Call(const Method& method, std::initializer_list<Member> request, std::initializer_list<Target> results = {});

    // The same for an operation without a reply: 0 when it was written. `logFailure`, if any, writes a line of its own
    // when it was not.
    int Post(const Method& method, std::initializer_list<Member> request,
             void (*logFailure)(const Method& method) = nullptr);

  private:
    const Family& mFamily;
};

}  // namespace tolm
