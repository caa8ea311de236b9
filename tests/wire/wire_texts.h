// Texts of every kind, and how they stand on the wire.
#pragma once

#include <string>
#include <vector>

namespace hbbtv::test {

struct WireText {
    const char* name;
    std::string text;
    std::string onTheWire;  // as the library writes it
    std::string readBack;   // what reading that gives
};

const std::vector<WireText>& WireTexts();

}  // namespace hbbtv::test
