// The service that the tests of the runtime call, in this process or in another one.
#pragma once

#include <vantorel/test/1.0/IWorkbench.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace hbbtv::test {

using ::android::sp;
using ::android::hardware::hidl_handle;
using ::android::hardware::hidl_string;
using ::android::hardware::hidl_vec;
using ::android::hardware::Return;
using ::android::hardware::Void;
using ::vantorel::test::V1_0::Colour;
using ::vantorel::test::V1_0::IBouncer;
using ::vantorel::test::V1_0::IListener;
using ::vantorel::test::V1_0::Item;
using ::vantorel::test::V1_0::IWorkbench;
using ::vantorel::test::V1_0::IWorkshop;
using ::vantorel::test::V1_0::Misdeed;

class Bouncer : public IBouncer {
  public:
    Return<uint32_t> bounce(uint32_t depth, const sp<IBouncer>& other) override;

    // The threads on which bounce() has run.
    std::vector<std::thread::id> Threads();

  private:
    std::mutex mMutex;
    std::vector<std::thread::id> mThreads;
};

class Workshop : public IWorkbench {
  public:
    Return<void> scalars(bool truth, int32_t small, uint32_t natural, int64_t big, uint64_t huge, double real,
                         scalars_cb callback) override;
    Return<void> echo(const hidl_string& text, echo_cb callback) override;
    Return<void> numbers(const hidl_vec<uint32_t>& numbers, numbers_cb callback) override;
    Return<void> words(const hidl_vec<hidl_string>& words, words_cb callback) override;
    Return<void> items(const hidl_vec<Item>& items, items_cb callback) override;
    Return<Colour> nextColour(Colour colour) override;
    Return<void> summary(const hidl_vec<Item>& items, const hidl_string& title, summary_cb callback) override;
    Return<int32_t> pid() override;
    Return<void> caller(caller_cb callback) override;
    Return<void> postCaller() override;
    Return<bool> setListener(const sp<IListener>& listener) override;
    Return<sp<IListener>> listener() override;
    Return<bool> isListener(const sp<IListener>& listener) override;
    Return<uint32_t> emit(uint32_t count) override;
    Return<void> ask(const hidl_string& question, ask_cb callback) override;
    Return<void> askFromElsewhere(const hidl_string& question, askFromElsewhere_cb callback) override;
    Return<void> post(uint32_t number) override;
    Return<void> posted(posted_cb callback) override;
    Return<void> postSlowly(uint32_t number) override;
    Return<void> hold() override;
    Return<void> answerThenHold(answerThenHold_cb callback) override;
    Return<void> letGo() override;
    Return<uint32_t> holding() override;
    Return<void> misbehave(Misdeed misdeed, misbehave_cb callback) override;
    Return<sp<IBouncer>> bouncer() override;
    Return<void> echoThrough(const hidl_string& instance, const hidl_string& text, echoThrough_cb callback) override;
    Return<uint32_t> tools() override;
    // Writes the options to each descriptor of the handle, and its numbers.
    Return<void> debug(const hidl_handle& handle, const hidl_vec<hidl_string>& options) override;

    // The threads on which calls were held.
    uint32_t MostHolding();

  private:
    sp<IListener> Listener();
    void Hold();

    std::mutex mMutex;
    std::condition_variable mChanged;
    sp<IListener> mListener;
    std::vector<uint32_t> mPosted;
    uint32_t mHolding = 0;
    uint32_t mMostHolding = 0;
    uint32_t mLetGo = 0;
};

// Returns an item with all members set. Different seeds return different items.
Item MakeItem(uint32_t seed);

}  // namespace hbbtv::test
