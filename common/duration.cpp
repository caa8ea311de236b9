#include "common/duration.h"

namespace hbbtv {

std::string InWords(Milliseconds time) {
    if (time.count() % 1000 == 0) return std::to_string(time.count() / 1000) + " s";
    return std::to_string(time.count()) + " ms";
}

}  // namespace hbbtv
