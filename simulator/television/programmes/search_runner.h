// Runs searches in turns of a few milliseconds, with the simulator's other work in between.
#pragma once

#include <deque>
#include <memory>

#include "core/event_loop.h"
#include "television/programmes/programme_search.h"

namespace hbbtv::sim {

class SearchRunner {
  public:
    explicit SearchRunner(EventLoop& loop) : mNext(loop) {}

    // Runs the search until it ends or is destroyed, but not before the caller returns. Aborts it if too many are
    // running.
    void Run(const std::shared_ptr<ProgrammeSearch>& search);

  private:
    void Step();

    std::deque<std::weak_ptr<ProgrammeSearch>> mUnderWay;  // the next one first
    Timer mNext;
};

}  // namespace hbbtv::sim
