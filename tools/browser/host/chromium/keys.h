// The keys of a remote control, with the codes of CE-HTML that HbbTV uses.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace hbbtv::browser {

// Returns the code of a key by its name, "RED" or "5". Throws Failure(kUsage) with the nearest name.
int KeyCode(const std::string& name);

// Returns the names of all keys, in the order of a remote control.
const std::vector<std::string>& KeyNames();

// Returns the parameters of "Input.dispatchKeyEvent" for the key down, which a page gets as keydown and keypress, and
// for the key up.
Json::Value KeyDown(int code);
Json::Value KeyUp(int code);

}  // namespace hbbtv::browser
