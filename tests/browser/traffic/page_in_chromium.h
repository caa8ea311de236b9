// A page in Chromium, as a test uses it: it opens an address, runs scripts, presses keys and keeps what the browser
// complains about.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "devtools/devtools.h"

namespace hbbtv::test {

class PageInChromium {
  public:
    // Opens a window of this size, in pixels, without an address.
    explicit PageInChromium(int width = 1440, int height = 900);

    // Opens an address, and waits until it is there. `ours`: it is a page of traffic.
    void Open(const std::string& url, bool ours = true);

    // Returns the value of an expression, which may be a promise. Throws Failure, also if the script throws.
    Json::Value Evaluate(const std::string& expression);
    std::string Text(const std::string& expression) { return Evaluate(expression).asString(); }

    // Waits until the expression is true, at most for a minute. Throws Failure.
    void Await(const std::string& expression);

    // Presses and releases a key, by the name that DOM events have for it. `text`: what it types.
    void Press(const std::string& key, const std::string& text = "");

    // "light" or "dark", as the system of the user would ask for.
    void PreferTheme(const std::string& theme);

    void AllowClipboard();

    // Writes what is visible, as PNG.
    void Screenshot(const std::string& file);

    // Returns the errors and lines of the console, and uncaught exceptions.
    const std::vector<std::string>& Complaints() const { return mComplaints; }

    // Returns the addresses that the page has requested.
    const std::vector<std::string>& Requests() const { return mRequests; }

  private:
    Json::Value Command(const std::string& method, const Json::Value& params = Json::objectValue);
    void Heard(const std::string& method, const Json::Value& params);

    devtools::Loop mLoop;
    devtools::DevTools mChromium;
    std::string mSession;
    std::vector<std::string> mComplaints;
    std::vector<std::string> mRequests;
};

}  // namespace hbbtv::test
