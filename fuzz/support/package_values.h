// Values of the package's types for calls, and the clients that receive callbacks.
#pragma once

#include <json/value.h>

#include <atomic>
#include <string>

#include "package/bindings.h"
#include "package/description.h"

namespace hbbtv::fuzz {

// Returns a value that is neither 0 nor empty. That of a callback is "@listen", and that of a handle or a context 1.
Json::Value UsualValue(const Type& type);
Json::Value UsualValues(const std::vector<Parameter>& parameters);

// Returns the values of an array that fit their parameters, and usual values instead of the others.
Json::Value FittingValues(const std::vector<Parameter>& parameters, const Json::Value& values);

// Returns the operation that a method sends, or null.
const Json::Value* OperationOf(const Package::QualifiedMethod& method);

// All clients: answers every callback.
class UsualClient : public EventSink {
  public:
    enum class Manner { kAnswers, kDoesNotAnswer, kDies };

    static UsualClient& Get();

    void Behave(Manner manner) { mManner = manner; }
    Json::Value Take(const char* interface, const char* method, Json::Value arguments) override;

  private:
    std::atomic<Manner> mManner{Manner::kAnswers};
};

}  // namespace hbbtv::fuzz
