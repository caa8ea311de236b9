#include "devtools/loop.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <csignal>

namespace hbbtv::devtools {

using Clock = std::chrono::steady_clock;

struct Loop::Signals {
    explicit Signals(asio::io_context& context) : set(context, SIGINT, SIGTERM) {}
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

void Loop::OnSignals(std::function<void()> function) {
    mSignals = std::make_unique<Signals>(*mContext);
    mSignals->function = std::move(function);
    WaitForSignal();
}

void Loop::WaitForSignal() {
    mSignals->set.async_wait([this](const asio::error_code& error, int) {
        if (error) return;
        mSignals->function();
        WaitForSignal();
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
