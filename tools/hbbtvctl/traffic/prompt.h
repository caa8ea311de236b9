// Lines that are typed while a relay runs: rules, and commands about them.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "traffic/relay/relay.h"

namespace hbbtv::ctl {

class Prompt {
  public:
    // Reads standard input until its end, and prints the answers to standard error.
    explicit Prompt(traffic::Relay& relay);

    // The relay may be stopped afterwards: it gets no more lines.
    ~Prompt();
    Prompt(const Prompt&) = delete;
    Prompt& operator=(const Prompt&) = delete;

  private:
    struct Shared {
        std::mutex mutex;
        traffic::Relay* relay = nullptr;  // guarded by the mutex; null at the end
    };
    static void Read(const std::shared_ptr<Shared>& shared);

    const std::shared_ptr<Shared> mShared = std::make_shared<Shared>();
};

}  // namespace hbbtv::ctl
