// The simulator for tests of programmes, components and AV control: programmes that are now and next at any time, and
// requests to the three families.
#pragma once

#include "simulated_platform.h"

namespace hbbtv::test {

// Of channel One, from 2020 to 2037 "Long Day - The Start", and then "The End". Of Two only "Later", from 2037 on.
extern const char* const kProgrammes;

class AvPlatform : public SimulatedPlatform {
  protected:
    enum class To { Programme, Component, Control };

    // Starts the simulator with these programmes, an empty text for none.
    void Begin(const std::string& programmes = kProgrammes, std::vector<std::string> options = {});

    Json::Value Ask(To family, int method, const Members& members = {});

    int Ret(To family, int method, const Members& members = {}) { return Ask(family, method, members)["ret"].asInt(); }

    // One-way. What is asked for behind it comes later.
    void Send(To family, int method, const Members& members);

    // The handle of the programme at this place of the object's channel.
    std::string ProgrammeOf(const std::string& vb, unsigned index);

    // The handle of a component of what the object presents.
    std::string ComponentOf(const std::string& vb, int type, unsigned index);

    // An object that presents the channel 1.1.<sid>.
    std::string Presenting(int sid);

    // Until it presents that channel.
    void Tune(const std::string& vb, int sid);

  private:
    std::string Request(To family, int method, const Members& members);
    RawClient& Client(To family);

    std::map<To, std::unique_ptr<RawClient>> mClients;
};

}  // namespace hbbtv::test
