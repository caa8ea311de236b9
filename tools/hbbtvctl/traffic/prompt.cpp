#include "traffic/prompt.h"

#include <cstdio>
#include <iostream>
#include <thread>

#include "common/failure.h"
#include "common/text/printable.h"

namespace hbbtv::ctl {

Prompt::Prompt(traffic::Relay& relay) {
    mShared->relay = &relay;
    std::thread(Read, mShared).detach();  // may wait for a line at the end of the program
}

Prompt::~Prompt() {
    std::lock_guard<std::mutex> lock(mShared->mutex);
    mShared->relay = nullptr;
}

void Prompt::Read(const std::shared_ptr<Shared>& shared) {
    for (std::string line; std::getline(std::cin, line);) {
        std::lock_guard<std::mutex> lock(shared->mutex);
        if (shared->relay == nullptr) return;
        try {
            std::fputs(shared->relay->Tell(line).c_str(), stderr);
        } catch (const Failure& e) {
            std::fprintf(stderr, "hbbtvctl: %s\n", Printable(e.what(), LineBreaks::Kept).c_str());
        }
    }
}

}  // namespace hbbtv::ctl
