// What arrives at the callback objects of this process, by "Interface.Method".
#pragma once

#include <json/value.h>

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "package/bindings.h"

namespace hbbtv::test {

class Arrivals : public hbbtv::EventSink {
  public:
    // The callback objects live as long as the process does, and so does this.
    static Arrivals& OfThisProcess();

    // Results of a method from now on; without it, zeros and empty texts.
    void Answer(const std::string& method, Json::Value results);

    // Takes the first call of the method that nobody has taken yet.
    std::optional<Json::Value> Next(const std::string& method);

    // Begins anew, with neither calls nor answers.
    void Forget();

    // What nobody has taken.
    std::vector<std::string> Rest() const;

    // On the threads that serve this process's callbacks.
    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override;

  private:
    mutable std::mutex mMutex;
    std::map<std::string, std::vector<Json::Value>> mCalls;  // guarded by mMutex
    std::map<std::string, Json::Value> mAnswers;             // guarded by mMutex
};

// On one line.
std::string Written(const Json::Value& value);

}  // namespace hbbtv::test
