#include "workshop.h"

#include <hidl/HidlTransportSupport.h>
#include <hwbinder/IPCThreadState.h>
#include <signal.h>
#include <unistd.h>
#include <algorithm>

#include <thread>

namespace hbbtv::test {

using ::android::hardware::IPCThreadState;

namespace {

// Returns "?" and the error if the listener cannot be called.
std::string AnswerOf(const sp<IListener>& listener, const hidl_string& question) {
    if (listener == nullptr) return "?no listener";
    std::string answer;
    const Return<void> asked = listener->answer(question, [&](const hidl_string& reply) { answer = reply; });
    return asked.isOk() ? answer : "?" + asked.description();
}

}  // namespace

Return<uint32_t> Bouncer::bounce(uint32_t depth, const sp<IBouncer>& other) {
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mThreads.push_back(std::this_thread::get_id());
    }
    if (depth == 0) return 0u;
    const Return<uint32_t> inside = other->bounce(depth - 1, this);
    if (!inside.isOk()) return 1000000u;
    return inside + 1;
}

std::vector<std::thread::id> Bouncer::Threads() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mThreads;
}

Return<void> Workshop::scalars(bool truth, int32_t small, uint32_t natural, int64_t big, uint64_t huge, double real,
                               scalars_cb callback) {
    callback({truth, small, natural, big, huge, real});
    return Void();
}

Return<void> Workshop::echo(const hidl_string& text, echo_cb callback) {
    callback(text);
    return Void();
}

Return<void> Workshop::numbers(const hidl_vec<uint32_t>& numbers, numbers_cb callback) {
    callback(numbers);
    return Void();
}

Return<void> Workshop::words(const hidl_vec<hidl_string>& words, words_cb callback) {
    callback(words);
    return Void();
}

Return<void> Workshop::items(const hidl_vec<Item>& items, items_cb callback) {
    callback(items);
    return Void();
}

Return<Colour> Workshop::nextColour(Colour colour) {
    return static_cast<Colour>((static_cast<int32_t>(colour) + 1) % 3);
}

// The results are valid only until the callback returns.
Return<void> Workshop::summary(const hidl_vec<Item>& items, const hidl_string& title, summary_cb callback) {
    uint32_t total = 0;
    hidl_vec<hidl_string> names;
    names.resize(items.size());
    for (size_t i = 0; i < items.size(); ++i) {
        total += items[i].count;
        names[i] = items[i].name;
    }
    callback(items.size() == 0 ? -1 : 0, std::string(title) + "!", total, names, items.size() == 0 ? Item() : items[0]);
    return Void();
}

Return<int32_t> Workshop::pid() {
    return getpid();
}

Return<void> Workshop::caller(caller_cb callback) {
    const IPCThreadState* const thread = IPCThreadState::self();
    const pid_t before = thread->getCallingPid();
    const sp<IListener> listener = Listener();
    if (listener != nullptr) listener->answer("", [](const hidl_string&) {}).isOk();
    callback(before, thread->getCallingPid());
    return Void();
}

Return<void> Workshop::postCaller() {
    return post(static_cast<uint32_t>(IPCThreadState::self()->getCallingPid()));
}

sp<IListener> Workshop::Listener() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mListener;
}

Return<bool> Workshop::setListener(const sp<IListener>& listener) {
    sp<IListener> before = listener;  // released after the lock
    std::lock_guard<std::mutex> lock(mMutex);
    std::swap(mListener, before);
    return mListener != nullptr;
}

Return<sp<IListener>> Workshop::listener() {
    return Listener();
}

Return<bool> Workshop::isListener(const sp<IListener>& listener) {
    return ::android::hardware::interfacesEqual(Listener(), listener);
}

Return<uint32_t> Workshop::emit(uint32_t count) {
    const sp<IListener> listener = Listener();
    uint32_t accepted = 0;
    for (uint32_t i = 0; listener != nullptr && i < count; ++i) accepted += listener->onEvent(i).isOk() ? 1 : 0;
    return accepted;
}

Return<void> Workshop::ask(const hidl_string& question, ask_cb callback) {
    callback(AnswerOf(Listener(), question));
    return Void();
}

Return<void> Workshop::askFromElsewhere(const hidl_string& question, askFromElsewhere_cb callback) {
    std::string answer;
    std::thread elsewhere([&] { answer = AnswerOf(Listener(), question); });
    elsewhere.join();
    callback(answer);
    return Void();
}

Return<void> Workshop::post(uint32_t number) {
    std::lock_guard<std::mutex> lock(mMutex);
    mPosted.push_back(number);
    return Void();
}

Return<void> Workshop::posted(posted_cb callback) {
    hidl_vec<uint32_t> numbers;
    {
        std::lock_guard<std::mutex> lock(mMutex);
        numbers = mPosted;
    }
    callback(numbers);
    return Void();
}

Return<void> Workshop::postSlowly(uint32_t number) {
    Hold();
    return post(number);
}

void Workshop::Hold() {
    std::unique_lock<std::mutex> lock(mMutex);
    ++mHolding;
    mMostHolding = std::max(mMostHolding, mHolding);
    mChanged.wait(lock, [this] { return mLetGo > 0; });
    --mLetGo;
    --mHolding;
}

uint32_t Workshop::MostHolding() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mMostHolding;
}

Return<void> Workshop::hold() {
    Hold();
    return Void();
}

Return<void> Workshop::answerThenHold(answerThenHold_cb callback) {
    callback("answered");
    Hold();
    return Void();
}

Return<void> Workshop::letGo() {
    std::lock_guard<std::mutex> lock(mMutex);
    ++mLetGo;
    mChanged.notify_all();
    return Void();
}

Return<uint32_t> Workshop::holding() {
    std::lock_guard<std::mutex> lock(mMutex);
    return mHolding;
}

Return<void> Workshop::misbehave(Misdeed misdeed, misbehave_cb callback) {
    switch (misdeed) {
        case Misdeed::NO_ANSWER:
            break;
        case Misdeed::TWO_ANSWERS:
            callback("one");
            callback("two");
            break;
        case Misdeed::DIE:
            kill(getpid(), SIGKILL);
    }
    return Void();
}

Return<sp<IBouncer>> Workshop::bouncer() {
    return sp<IBouncer>(new Bouncer);
}

Return<void> Workshop::echoThrough(const hidl_string& instance, const hidl_string& text, echoThrough_cb callback) {
    std::string answer = "?not there";
    const sp<IWorkshop> other = IWorkshop::tryGetService(instance);
    if (other != nullptr) {
        const Return<void> echoed = other->echo(text, [&](const hidl_string& reply) { answer = reply; });
        if (!echoed.isOk()) answer = "?" + echoed.description();
    }
    callback(answer);
    return Void();
}

Return<void> Workshop::debug(const hidl_handle& handle, const hidl_vec<hidl_string>& options) {
    if (handle == nullptr) return Void();
    std::string text;
    for (const hidl_string& option : options) text += std::string(option) + " ";
    for (int i = 0; i < handle->numInts; ++i) text += std::to_string(handle->data[handle->numFds + i]) + " ";
    for (int i = 0; i < handle->numFds; ++i) dprintf(handle->data[i], "%d: %s\n", i, text.c_str());
    return Void();
}

Return<uint32_t> Workshop::tools() {
    return 7u;
}

Item MakeItem(uint32_t seed) {
    Item item;
    item.name = "item " + std::to_string(seed);
    item.count = seed * 3;
    item.sold = seed % 2 == 1;
    item.colour = static_cast<Colour>(seed % 3);
    item.picture = {static_cast<uint8_t>(seed), 0, 255};
    item.price = seed * 0.25;
    for (uint32_t i = 0; i < seed % 4; ++i) {
        hidl_vec<hidl_string> longer = item.labels;
        longer.resize(i + 1);
        longer[i] = "label " + std::to_string(i);
        item.labels = longer;
    }
    return item;
}

}  // namespace hbbtv::test
