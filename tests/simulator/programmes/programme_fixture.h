// The simulator with programmes that are now and next at any time.
#pragma once

#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {

// Of channel One, "Long Day - The Start" from 2020 to 2037 and then "The End". Of Two only "Later", from 2037 on.
extern const char* const kProgrammes;

class ProgrammeFixture : public VideoBroadcastFixture {
  protected:
    // Starts the simulator with these programmes.
    void StartWith(const std::string& programmes);

    // Returns the handle of the programme at this place of what the object presents.
    std::string ProgrammeOf(const std::string& vb, unsigned index) {
        return HandleOf(vb, "video_broadcast.GetProgrammeByIndex", {{"index", index}});
    }
};

}  // namespace hbbtv::test
