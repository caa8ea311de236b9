// The simulator for tests of programmes, components and AV control: programmes that are now and next at any time, and
// what is presented.
#pragma once

#include "simulated_platform.h"

namespace hbbtv::test {

// Of channel One, from 2020 to 2037 "Long Day - The Start", and then "The End". Of Two only "Later", from 2037 on.
extern const char* const kProgrammes;

class AvPlatform : public SimulatedPlatform {
  protected:
    // Starts the simulator with these programmes, an empty text for none.
    void Begin(const std::string& programmes = kProgrammes, std::vector<std::string> options = {});

    // The handle of the programme at this place of the object's channel.
    std::string ProgrammeOf(const std::string& vb, unsigned index);

    // The handle of a component of what the object presents.
    std::string ComponentOf(const std::string& vb, int type, unsigned index);

    // An object that presents the channel 1.1.<sid>.
    std::string Presenting(int sid);

    // Until it presents that channel.
    void Tune(const std::string& vb, int sid);
};

}  // namespace hbbtv::test
