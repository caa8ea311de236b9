// The page half of the browser: the files of page/, compiled into the program.
#pragma once

namespace hbbtv::browser {

// One function, to run before the scripts of a document.
extern const char* const kPageScript;

}  // namespace hbbtv::browser
