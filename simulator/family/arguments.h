// The members of one request, read strictly: a member that is missing or of the wrong type refuses the request, with
// the reason.
#pragma once

#include <json/value.h>

#include <string>

#include "core/error.h"

namespace hbbtv::sim {

class Arguments {
  public:
    explicit Arguments(const Json::Value& request) : mRequest(request) {}

    int Int(const char* name) const;
    unsigned UInt(const char* name) const;
    bool Bool(const char* name) const;
    double Real(const char* name) const;
    std::string Text(const char* name) const;
    std::string ShortText(const char* name) const;  // a string that is stored: at most 256 KiB
    uint64_t Pointer(const char* name) const;       // 0 for the null pointer

    // A list whose items are objects; null is the empty list.
    const Json::Value& Objects(const char* name) const;

    bool Has(const char* name) const { return mRequest.isMember(name); }

  private:
    const Json::Value& Member(const char* name, bool (Json::Value::*hasType)() const, const char* typeName) const;

    const Json::Value& mRequest;
};

}  // namespace hbbtv::sim
