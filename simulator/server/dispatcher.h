// Passes a message of a family's socket to its operation, and writes the operation's reply as JSON. Every message
// causes a reply or a log line; exceptions do not leave this class.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "common/frame.h"
#include "core/journal.h"
#include "family/family.h"

namespace hbbtv::sim {

class Dispatcher {
  public:
    Dispatcher(std::unique_ptr<Family> family, const Journal& journal)
        : mFamily(std::move(family)), mJournal(journal) {}

    // The reply, for messages that get one.
    std::optional<Frame> Handle(const Frame& message);

    // While true, messages are read and ignored, as by a platform that hangs.
    void StopAnswering(bool stop) { mSilent = stop; }

    const Family& Served() const { return *mFamily; }

  private:
    static Json::Value Parsed(const std::string& text);
    Json::Value Answer(const std::string& text, std::string& operation, std::string& arguments);
    const Operation& Find(const Json::Value& request) const;

    std::unique_ptr<Family> mFamily;
    const Journal& mJournal;
    bool mSilent = false;
};

}  // namespace hbbtv::sim
