// The vocabulary in which an adaptor writes the rows of its wire table, and the base class that executes a row.
//
//     int TolmVideoBroadcastAdaptorIpc::GetVolume(const void* vb, unsigned& volume) {
//         return Call(16, {Pointer("vb_handle", vb)}, {ToUInt("volume", volume)});
//     }
//
// Keys are literals. Nothing is converted implicitly: the name of the function is the JSON type, and an argument of
// another type does not compile.
#pragma once

#include <json/json.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "ipc/src/tolm_base_client.h"
#include "ipc/src/tolm_family.h"
#include "ipc/src/tolm_member.h"
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

// A member of a reply or an event and the variable that it is read into. A member that is missing or cannot be
// converted reads as 0, false or "". Two kinds can fail, and leave the variable unchanged: a pointer that is not a
// string (the empty string is null), and numbered ints of which there are more than kMostNumbered.
struct Target {
    const char* key;
    void* to;
    bool (*read)(const Json::Value& object, const char* key, void* to);
};

Target ToInt(const char* key, int& to);
Target ToUInt(const char* key, unsigned& to);
Target ToIntBits(const char* key, unsigned& to);  // an int on the wire: -1 reads as 4294967295
Target ToInt64(const char* key, int64_t& to);
Target ToUInt64(const char* key, uint64_t& to);
Target ToBool(const char* key, bool& to);
Target ToFlag(const char* key, bool& to);  // an int on the wire: true unless it is 0
Target ToReal(const char* key, double& to);
Target ToText(const char* key, std::string& to);
Target ToPointer(const char* key, void*& to);

// Appends the members k0, k1, ...; the member `countKey` is their number. A count above kMostNumbered fails, and
// nothing is appended. The platform cuts such names to three characters: k10 also stands for k100 to k109, k1000 to
// k1099, ...
Target ToNumberedInts(const char* countKey, std::vector<int>& to);

// The limit of a count on the wire, which is not trusted. Lists of numbers are short.
constexpr int kMostNumbered = 65536;

// Reads all targets. Returns whether none failed.
bool Read(const Json::Value& object, std::initializer_list<Target> targets);

// The client side of every adaptor. Adaptors are thread-safe. An operation returns the platform's status (0 on
// success), or -1 without a valid reply, and sets its results only on success. A one-way operation does not wait for
// the platform; it returns 0 if the message was written, -1 otherwise. Platform objects are passed as handles, which
// are valid until they are released.
class TolmAdaptorClient : public TolmBaseClient {
  protected:
    // `family` is kept by reference: a row of tolm_family.h.
    explicit TolmAdaptorClient(const Family& family);
    ~TolmAdaptorClient() = default;

    // Executes an operation: logs ENTER and LEAVE, sends the request and waits for the reply. Returns the platform's
    // "ret", or -1 if there is no valid reply or a result cannot be read. Results are read only on status 0.
    int Call(const Method& method, std::initializer_list<Member> request, std::initializer_list<Target> results = {});

    // Executes a one-way operation. `logFailure`, if any, is called if the message was not written.
    int Post(const Method& method, std::initializer_list<Member> request,
             void (*logFailure)(const Method& method) = nullptr);

  private:
    const Family& mFamily;
};

}  // namespace tolm
