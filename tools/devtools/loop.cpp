#include "devtools/loop.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>

namespace hbbtv::devtools {

using Clock = std::chrono::steady_clock;

struct Loop::Signals {
    explicit Signals(asio::io_context& context) : set(context) {}
    asio::signal_set set;
    std::function<void()> function;
};

Loop::Loop() : mContext(std::make_unique<asio::io_context>(1)) {}

Loop::~Loop() = default;

void Loop::Post(std::function<void()> function) {
    asio::post(*mContext, std::move(function));
}

void Loop::After(Milliseconds delay, std::function<void()> function) {
    auto timer = std::make_shared<asio::steady_timer>(*mContext, delay);
    timer->async_wait([timer, call = std::move(function)](const asio::error_code& error) {
        if (!error) call();
    });
}

void Loop::OnSignals(std::initializer_list<int> signals, std::function<void()> function) {
    auto waiting = std::make_unique<Signals>(*mContext);
    for (const int signal : signals) waiting->set.add(signal);
    waiting->function = std::move(function);
    Wait(*waiting);
    mSignals.push_back(std::move(waiting));
}

void Loop::Wait(Signals& signals) {
    signals.set.async_wait([&signals](const asio::error_code& error, int) {
        if (error) return;
        signals.function();
        Wait(signals);
    });
}

bool Loop::RunUntil(const std::function<bool()>& done, Milliseconds limit) {
    const auto keepRunning = asio::make_work_guard(*mContext);
    const auto end = Clock::now() + limit;
    while (!done()) {
        if (Clock::now() >= end) return false;
        mContext->run_one_until(end);
    }
    return true;
}

void Loop::RunUntil(const std::function<bool()>& done) {
    const auto keepRunning = asio::make_work_guard(*mContext);
    while (!done()) mContext->run_one();
}

}  // namespace hbbtv::devtools
