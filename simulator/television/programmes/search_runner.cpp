#include "television/programmes/search_runner.h"

#include <algorithm>

namespace hbbtv::sim {

namespace {

constexpr std::chrono::milliseconds kStep{2};
constexpr size_t kMostUnderWay = 20;

}  // namespace

void SearchRunner::Run(const std::shared_ptr<ProgrammeSearch>& search) {
    const bool known = std::any_of(mUnderWay.begin(), mUnderWay.end(),
                                   [&](const auto& underWay) { return underWay.lock() == search; });
    if (!known && mUnderWay.size() >= kMostUnderWay) return search->GiveUp();
    if (!known) mUnderWay.push_back(search);
    if (!mNext.Running()) mNext.Start(std::chrono::milliseconds(0), [this] { Step(); });
}

void SearchRunner::Step() {
    const auto search = mUnderWay.front().lock();
    mUnderWay.pop_front();
    if (search) {
        search->Step(std::chrono::steady_clock::now() + kStep);
        if (search->State() == SearchState::Searching) mUnderWay.push_back(search);
    }
    if (!mUnderWay.empty()) mNext.Start(std::chrono::milliseconds(0), [this] { Step(); });
}

}  // namespace hbbtv::sim
