// Functions that are called at their time, those of the same time in the order in which they were added.
#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <map>

namespace hbbtv::traffic {

class Agenda {
  public:
    using Clock = std::chrono::steady_clock;

    explicit Agenda(asio::io_context& context) : mTimer(context) {}

    // Calls the function on the loop, not before this function returns.
    void Add(Clock::duration delay, std::function<void()> function) {
        mEntries.emplace(Clock::now() + delay, std::move(function));
        Wait();
    }

  private:
    void Wait() {
        mTimer.expires_at(mEntries.begin()->first);
        mTimer.async_wait([this](const asio::error_code& error) {
            if (error) return;
            while (!mEntries.empty() && mEntries.begin()->first <= Clock::now()) {
                const std::function<void()> function = std::move(mEntries.begin()->second);
                mEntries.erase(mEntries.begin());
                function();
            }
            if (!mEntries.empty()) Wait();
        });
    }

    std::multimap<Clock::time_point, std::function<void()>> mEntries;
    asio::steady_timer mTimer;
};

}  // namespace hbbtv::traffic
