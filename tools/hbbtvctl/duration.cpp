// See duration.h.
#include "duration.h"

namespace hbbtv::ctl {

std::string InWords(Milliseconds time) {
    if (time.count() % 1000 == 0) return std::to_string(time.count() / 1000) + " s";
    return std::to_string(time.count()) + " ms";
}

}  // namespace hbbtv::ctl
