// The files of page/ and television/, compiled into the program.
#pragma once

namespace hbbtv::browser {

// One function, to run before the scripts of a document.
extern const char* const kPageScript;

// The page that shows picture and applications.
extern const char* const kTelevision;

}  // namespace hbbtv::browser
