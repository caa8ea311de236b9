#include "service/check.h"

namespace hbbtv::ctl {

Check Good(const std::string& name, const std::string& finding) {
    return {name, Check::Level::Good, finding, ""};
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

}  // namespace hbbtv::ctl
