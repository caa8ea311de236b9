// A test's own simulator: the real process in a directory of its own, the library's event socket beside it, and the
// video/broadcast requests in words.
#pragma once

#include <gtest/gtest.h>
#include <json/value.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "child_process.h"
#include "raw_peers.h"
#include "scratch_directory.h"

namespace hbbtv::test {

// Five channels and a service outside the list:
//   1 One, 2 Two (with sound in two languages, a description and subtitles), 3 Scrambled, 4 Dark (no signal),
//   5 Locked; Hidden. The triplets are 1.1.<number>, Hidden is 1.1.9. All by satellite.
extern const std::string kSmallLineUp;

// The three of them that cannot be presented, for other line-ups with a network "sat".
extern const char* const kOddServices;

// Codes of the video/broadcast requests.
enum Method {
    kCreate = 0,
    kRelease = 1,
    kDestroy = 2,
    kRegisterCallback = 3,
    kUnregisterCallback = 4,
    kSetWindow = 5,
    kGetFullScreen = 6,
    kGetPlayState = 7,
    kBindToCurrentChannel = 8,
    kCreateChannel1 = 9,
    kCreateChannel2 = 10,
    kSetChannel = 11,
    kPrevChannel = 12,
    kNextChannel = 13,
    kSetFullScreen = 14,
    kSetVolume = 15,
    kGetVolume = 16,
    kStop = 17,
    kGetPlaybackOffset = 18,
    kGetMaxOffset = 19,
    kGetRecordingState = 20,
    kGetPlayPosition = 21,
    kGetPlaySpeed = 22,
    kGetPlaySpeedNum = 23,
    kGetPlaySpeedByIndex = 24,
    kSetTimeShiftMode = 25,
    kGetTimeShiftMode = 26,
    kGetCurrentTimeShiftMode = 27,
    kStopRecording = 28,
    kPause = 29,
    kResume = 30,
    kSetSpeed = 31,
    kSeek = 32,
    kStopTimeShift = 33,
    kSetChannelQuiet = 35,
    kGetProgrammeNum = 36,
    kGetProgrammeByIndex = 37,
    kGetCurrentChannel = 38,
    kGetComponentNum = 39,
    kGetComponent = 40,
    kGetActiveComponentNum = 41,
    kGetActiveComponent = 42,
    kSelectComponent = 43,
    kUnselectComponent = 44,
    kSelectComponentByType = 45,
    kUnselectComponentByType = 46,
    kCreateAudioComponent = 47,
    kCreateVideoComponent = 48,
    kCreateComponentList = 49,
    kCreateProgrammeList = 50,
    kChangeDisplaySource = 63,
    kAddStreamEventListener = 64,
    kRemoveStreamEventListener = 65
};

// Where a family's requests go.
struct Endpoint {
    const char* socket;
    int port;
    std::optional<int> type;  // the member "type", which one family lacks
    const char* code = "method";
};

inline const Endpoint kToApplicationManager{"service_plugin_to_hbbtv_apm", 1, std::nullopt, "t"};
inline const Endpoint kToAvControl{"service_plugin_to_hbbtv_av_ctrl", 19, 2};
inline const Endpoint kToCapabilities{"service_plugin_to_hbbtv_cap", 10, 10};
inline const Endpoint kToChannel{"service_plugin_to_hbbtv_vb_chn", 2, 12};
inline const Endpoint kToChannelConfig{"service_plugin_to_hbbtv_vb_chn_config", 3, 19};
inline const Endpoint kToChannelList{"service_plugin_to_hbbtv_vb_chn_list", 4, 14};
inline const Endpoint kToCollection{"service_plugin_to_hbbtv_vb_fav_list_collect", 6, 15};
inline const Endpoint kToComponent{"service_plugin_to_hbbtv_av_com", 14, 11};
inline const Endpoint kToConfiguration{"service_plugin_to_hbbtv_conf", 12, 9};
inline const Endpoint kToDsmcc{"service_dsmcc_to_hbbtv", 2, 20};
inline const Endpoint kToFavouriteList{"service_plugin_to_hbbtv_vb_fav_list", 5, 15};
inline const Endpoint kToLocalSystem{"service_plugin_to_hbbtv_local_system", 11, 6};
inline const Endpoint kToParentalControl{"service_plugin_to_hbbtv_pcm", 16, 13};
inline const Endpoint kToPrivateData{"service_plugin_to_hbbtv_app_priv", 17, 8};
inline const Endpoint kToProgramme{"service_plugin_to_hbbtv_program", 13, 5};
inline const Endpoint kToSearchManager{"service_plugin_to_hbbtv_sm", 8, 0};
inline const Endpoint kToTabManager{"service_mtm_to_hbbtv", 1, 0};
inline const Endpoint kToVideoBroadcast{"service_plugin_to_hbbtv_vb", 7, 3};

class SimulatedPlatform : public testing::Test {
  protected:
    using Members = std::map<std::string, Json::Value>;

    // Starts the program with the line-up of the test (mLineUp) and these options, and waits until it is ready.
    void Start(std::vector<std::string> options = {});

    // The program with these options and nothing else, not waited for.
    std::unique_ptr<ChildProcess> Launch(const std::vector<std::string>& options);

    // Ends it by SIGTERM; its exit code.
    int Stop();

    void ServeEvents();
    void StopServingEvents() { mLibrary.reset(); }

    // A request to a family and its reply.
    Json::Value AskAt(const Endpoint& endpoint, int code, const Members& members = {});

    int RetAt(const Endpoint& endpoint, int code, const Members& members = {}) {
        return AskAt(endpoint, code, members)["ret"].asInt();
    }

    // The handle in this member of the reply; empty for the null handle.
    std::string HandleAt(const Endpoint& endpoint, int code, const char* member, const Members& members = {});

    // One-way. What is asked behind it comes later.
    void SendAt(const Endpoint& endpoint, int code, const Members& members);

    // The connection for a family's requests, made when it is first used; the video/broadcast family's.
    RawClient& ClientOf(const Endpoint& endpoint);
    RawClient& Client() { return ClientOf(kToVideoBroadcast); }
    void CloseConnections() { mClients.clear(); }

    // Whatever the text is, there is a reply.
    Json::Value AnswerTo(const Endpoint& endpoint, const std::string& text);

    // The next message that the stand-in gets, with a failure when none comes: one-way or a question, and an event.
    Frame NextMessage(LibraryStandIn& library, int port);
    Json::Value NextEventOf(LibraryStandIn& library, int port);

    // Of the video/broadcast family, with the handle of an object in the second form.
    Json::Value Ask(int method, const Members& members = {});
    Json::Value AskOf(const std::string& vb, int method, Members members = {});

    int Ret(int method, const Members& members = {}) { return Ask(method, members)["ret"].asInt(); }

    int RetOf(const std::string& vb, int method, const Members& members = {}) {
        return AskOf(vb, method, members)["ret"].asInt();
    }

    // A new object with a registered callback; its handle.
    std::string NewObject(const std::string& context = "0xc0de");

    // The handle of the channel 1.1.<sid>.
    std::string Channel(const std::string& vb, int sid);

    int SetChannel(const std::string& vb, const std::string& channel);
    int State(const std::string& vb);

    // A word from the viewer or the weather; "ok" or its answer.
    std::string Tell(const std::string& line);

    // The next event as text, with channels by name: "PlayState 1 0", "ChannelChanged Two 0", "ChannelError Two 5".
    std::string NextEvent();
    Json::Value NextEventJson();

    // Events up to and with this one.
    std::vector<std::string> EventsUntil(const std::string& last);

    // Everything that was sent so far and not read yet, made sure of by an event of the test's own behind it.
    std::vector<std::string> EventsSoFar(const std::string& vb);

    // A fresh object in this state on channel One, with all events so far read. Needs a tune time of 0.
    std::string ObjectIn(const std::string& state, const std::string& context = "0xc0de");

    ScratchDirectory mDirectory;
    std::string mLineUp = kSmallLineUp;
    std::string mRequestSocket = mDirectory / "service_plugin_to_hbbtv_vb";
    std::string mEventSocket = mDirectory / "service_hbbtv_to_plugin_vb";
    std::unique_ptr<LibraryStandIn> mLibrary;
    std::unique_ptr<ChildProcess> mSimulator;

  private:
    std::string EventText(const Json::Value& event) const;

    std::map<std::string, std::string> mChannelNames;            // by handle
    std::map<std::string, std::unique_ptr<RawClient>> mClients;  // by socket
};

Json::Value Parsed(const std::string& text);

std::string ContentOf(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

}  // namespace hbbtv::test
