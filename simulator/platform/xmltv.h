// Programmes from an XMLTV file: what of it is used, and how, is documented in docs/simulator.md.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "platform/line_up.h"
#include "platform/listed_guide.h"

namespace hbbtv::sim {

// A file of programmes that cannot be used; the text says where (name:line) and why.
class BadProgrammes : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// For the services of the line-up. `name` stands for the text in messages. What cannot be used by itself is skipped
// with a warning.
std::unique_ptr<ListedGuide> ParseXmltv(std::string text, const std::string& name, const LineUp& lineUp,
                                        const LineUpWarning& warn);

std::unique_ptr<ListedGuide> ReadXmltv(const std::string& path, const LineUp& lineUp, const LineUpWarning& warn);

}  // namespace hbbtv::sim
