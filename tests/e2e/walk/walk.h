// A walk through the package: a text that says, line by line, what a client calls, what the viewer does and what the
// platform sends, and what has to come back or arrive.
//
//     IChannel.GetName($one) -> 0, "Eins"       a call of the service: arguments and results as JSON, in the order of
//                                               the .hal file. "@listen" is the client's callback object
//     until IVideoBroadcast.GetPlayState($vb) -> 0, 2      the same again and again, until it comes out like this
//     answer IMtmCallback.CreateApp -> 0, 7     from now on the client's callback object gives these results
//     tell zap 2 -> ok Zwei                     what the viewer does, and the simulated platform's answer;
//                                               "until" as above
//     event channel_config 0: IChannelConfigCallback.OnChannelConfigEvent(0, {"reserved": 76}, 5)
//                                               the next call of this method that arrives at the client. Family and
//                                               code say which event of protocol/ it is
//     emit mtm 34: {"type": 0, "method": 34} -> {"ret": 0, "status": 42}
//                                               an event written to the library's socket, with its reply; one-way
//                                               without one. "mediasync" stands for that object of video_broadcast
//
// Members of a struct that a line does not name have to be 0, false or empty.
// $name in a result keeps the value, which has to be something (not 0, not empty), and is this value from then on.
// $directory is the test's own. Lines that begin with # are comments.
#pragma once

#include <json/value.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "arrivals.h"
#include "raw_socket.h"
#include "system.h"

namespace hbbtv::test {

class Walk {
  public:
    // `platform` has to write its trace.
    Walk(const SimulatedPlatform& platform, const std::string& directory);

    // Goes through the file. A line that does not hold is a failure of the test, at its place in the file.
    void Take(const std::string& file);

    // What was called ("IChannel.GetName").
    const std::set<std::string>& Called() const { return mCalled; }

    // Which events were there ("channel_config 0").
    const std::set<std::string>& Events() const { return mEvents; }

  private:
    std::string TakeLine(const std::string& line);
    std::string TakeCall(const std::string& interface, const std::string& method, const std::string& arguments,
                         const std::string& results, bool repeatedly);
    std::string TakeTell(const std::string& command, const std::string& answer, bool repeatedly);
    std::string TakeEvent(const std::string& event, const std::string& method, const std::string& arguments);
    std::string TakeEmission(const std::string& event, const std::string& message, const std::string& reply);

    size_t RequestsSeen(const std::string& operation) const;
    Json::Value Read(const std::string& text) const;
    Json::Value Filled(const Json::Value& value) const;
    bool Fits(const Json::Value& expected, const Json::Value& actual);

    const SimulatedPlatform& mPlatform;
    std::map<std::string, Json::Value> mValues;
    std::map<std::string, android::sp<android::hidl::base::V1_0::IBase>> mServices;
    std::map<std::string, RawConnection> mConnections;
    std::set<std::string> mCalled;
    std::set<std::string> mEvents;
};

}  // namespace hbbtv::test
