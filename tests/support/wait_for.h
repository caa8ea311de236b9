// Waits for a condition with a deadline: the only way in which these tests wait.
#pragma once

#include <chrono>
#include <thread>

namespace hbbtv::test {

// Long enough for a loaded machine under a sanitizer; a test that passes never waits this long.
constexpr std::chrono::seconds kPatience{30};

// Returns whether the condition came true in time. It is evaluated about every millisecond.
template <typename Condition>
bool WaitFor(Condition&& condition, std::chrono::milliseconds patience = kPatience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace hbbtv::test
