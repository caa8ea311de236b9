#include "core/event_loop.h"

#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <exception>

#include "core/journal.h"

namespace hbbtv::sim {

struct EventLoop::Signals {
    explicit Signals(asio::io_context& context) : set(context) {}
    asio::signal_set set;
};

EventLoop::EventLoop() : mContext(std::make_unique<asio::io_context>(1)) {}

EventLoop::~EventLoop() = default;

void EventLoop::Run() {
    const auto keepRunning = asio::make_work_guard(*mContext);
    while (!mContext->stopped()) {
        try {
            mContext->run();
        } catch (const std::exception& e) {
            Journal::Log(std::string("internal error, continuing: ") + e.what());
        }
    }
}

void EventLoop::RunReady() {
    mContext->restart();
    mContext->poll();
}

void EventLoop::Stop() {
    mContext->stop();
}

void EventLoop::Post(std::function<void()> function) {
    asio::post(*mContext, std::move(function));
}

void EventLoop::StopOnSignals(const std::vector<int>& signals) {
    mSignals = std::make_unique<Signals>(*mContext);
    for (const int signal : signals) mSignals->set.add(signal);
    mSignals->set.async_wait([this](const asio::error_code& error, int) {
        if (!error) Stop();
    });
}

struct Timer::State {
    explicit State(asio::io_context& context) : timer(context) {}
    asio::steady_timer timer;
    unsigned long start = 0;  // number of the latest start; a function of an earlier one is not called
    bool running = false;
};

Timer::Timer(EventLoop& loop) : mState(std::make_shared<State>(loop.Context())) {}

Timer::~Timer() {
    Cancel();
}

void Timer::Start(std::chrono::milliseconds delay, std::function<void()> function) {
    Cancel();
    mState->running = true;
    mState->timer.expires_after(delay);
    mState->timer.async_wait([weak = std::weak_ptr<State>(mState), start = mState->start,
                              call = std::move(function)](const asio::error_code& error) {
        const std::shared_ptr<State> state = weak.lock();
        if (error || !state || state->start != start) return;
        state->running = false;
        call();
    });
}

void Timer::Cancel() {
    ++mState->start;
    mState->running = false;
    mState->timer.cancel();
}

bool Timer::Running() const {
    return mState->running;
}

}  // namespace hbbtv::sim
