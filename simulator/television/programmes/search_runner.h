// Lets searches go on: a few milliseconds for one, then for the next, and whatever else the television has to do in
// between.
#pragma once

#include <deque>
#include <memory>

#include "core/event_loop.h"
#include "television/programmes/programme_search.h"

namespace hbbtv::sim {

class SearchRunner {
  public:
    explicit SearchRunner(EventLoop& loop) : mNext(loop) {}

    // Until it is not searching any more, or gone. Never before the caller returns. Gives it up when too many are
    // under way.
    void Run(const std::shared_ptr<ProgrammeSearch>& search);

  private:
    void Step();

    std::deque<std::weak_ptr<ProgrammeSearch>> mUnderWay;  // the next one in front
    Timer mNext;
};

}  // namespace hbbtv::sim
