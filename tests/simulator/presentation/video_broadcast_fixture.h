// The simulator with the requests and events of video/broadcast objects in words.
#pragma once

#include "simulator_fixture.h"

namespace hbbtv::test {

using Events = std::vector<std::string>;

// Types of components.
enum { kVideo = 0, kAudio = 1, kSubtitle = 2 };

class VideoBroadcastFixture : public SimulatorFixture {
  protected:
    // Creates an object with a registered callback and returns its handle.
    std::string NewObject(const std::string& context = "0xc0de");

    // Creates an object in this state on channel One and reads all events so far.
    std::string ObjectIn(const std::string& state, const std::string& context = "0xc0de");

    // Creates an object that presents the channel 1.1.<sid>.
    std::string Presenting(int sid);

    // Returns the handle of the channel 1.1.<sid>, whose name then stands in events.
    std::string Channel(const std::string& vb, int sid);

    // Returns the handle of a channel that a client describes.
    std::string CreateChannel(const std::string& vb, int idType, int onid, int tsid, int sid, int sourceId = 0,
                              const std::string& ipBroadcastId = "");

    int SetChannel(const std::string& vb, const std::string& channel);

    // Changes to the channel 1.1.<sid> and reads the events until the object presents it.
    void Tune(const std::string& vb, int sid);

    int State(const std::string& vb) { return GetOf(vb, "video_broadcast.GetPlayState").asInt(); }
    std::string CurrentChannel(const std::string& vb) { return HandleOf(vb, "video_broadcast.GetCurrentChannel"); }

    // Returns the handle of a component of what the object presents.
    std::string Component(const std::string& vb, int type, unsigned index);

    // Returns the next event as text, with channels by name: "PlayState 1 0", "ChannelError Two 5".
    std::string NextEvent();

    int Listen(const std::string& name, const std::string& url = "dvb://1.1.1/sevent",
               const std::string& operation = "AddStreamEventListener") {
        return Ret(operation, {{"strurl", url}, {"dvburl", "dvb://1.1.1.13"}, {"event_name", name}});
    }
    int StopListening(const std::string& name) {
        return Listen(name, "dvb://1.1.1/sevent", "RemoveStreamEventListener");
    }

    // Returns the next event, which is a stream event: "URL name [data] [text] status".
    std::string NextStreamEvent();

    // Returns the members of the next event.
    Json::Value NextMembers() { return NextEventOf("video_broadcast").members; }

    // Returns the events up to and including this one.
    Events EventsUntil(const std::string& last);

    // Returns all events that were sent and not yet read: those before an event that this function causes.
    Events EventsSoFar(const std::string& vb);

  private:
    std::string ChannelName(const std::string& handle) const;

    std::map<std::string, std::string> mChannelNames;  // by handle
};

}  // namespace hbbtv::test
