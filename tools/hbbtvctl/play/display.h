// Values of a play as shown to people: handles by the names set with `name`, methods as set with `show`.
#pragma once

#include <json/value.h>

#include <map>
#include <mutex>
#include <string>

#include "package/description.h"
#include "play/language/format.h"
#include "play/language/script.h"
#include "play/language/values.h"

namespace hbbtv::ctl {

// Thread-safe: events are shown on the threads that receive them.
class Display {
  public:
    void Name(int64_t handle, const std::string& name);
    void Show(const std::string& method, const Format& text);
    void Forget();

    // Returns "" for a handle without a name.
    std::string NameOf(int64_t handle) const;

    // Returns "IChannel.GetName(arte HD)".
    std::string Call(const CallStep& step, const Json::Value& arguments) const;

    // Returns the results without a status of 0, or "done" if there are no others.
    std::string Results(const Package::QualifiedMethod& method, const Json::Value& results) const;

    // Returns the arguments of an event.
    std::string Arguments(const Package::QualifiedMethod& method, const Json::Value& arguments) const;

  private:
    std::string Value(const Parameter& parameter, const Json::Value& value) const;
    bool InItsOwnWords(const Package::QualifiedMethod& method, const std::vector<Parameter>& parameters,
                       const Json::Value& values, std::string& text) const;

    mutable std::mutex mMutex;
    std::map<int64_t, std::string> mNames;  // guarded by mMutex
    std::map<std::string, Format> mShown;   // guarded by mMutex
};

}  // namespace hbbtv::ctl
