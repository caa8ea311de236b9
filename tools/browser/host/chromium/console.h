// The consoles of pages: their messages, errors and warnings, with positions.
#pragma once

#include <json/value.h>

#include <string>

namespace hbbtv::browser {

class Console {
  public:
    // Prints only if `shown` is set.
    explicit Console(bool shown) : mShown(shown) {}

    // Takes an event of a page. Returns whether it is one of the console.
    bool Take(const std::string& method, const Json::Value& params);

  private:
    void Print(const std::string& level, const std::string& text, const std::string& place) const;

    const bool mShown;
};

}  // namespace hbbtv::browser
