// The demo's search: programmes by a word of their title.
#pragma once

#include <string>

#include "caller.h"
#include "transcript.h"

namespace hbbtv::demo {

// Shows the first programmes that have the word in their titles. Whether everything went as it should.
bool SearchProgrammes(Transcript& transcript, Caller& caller, const std::string& word);

}  // namespace hbbtv::demo
