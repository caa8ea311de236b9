// The platform's side of the video/broadcast events endpoint, and a receiver that keeps what reaches it.
#pragma once

#include <android/log.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "ipc/src/plugin/tolm_video_broadcast_adaptor_ipc.h"
#include "log_capture.h"
#include "raw_socket.h"
#include "scratch_directory.h"

namespace hbbtv::test {

// What a receiver was called with.
struct ReceivedEvent {
    std::string receiver;  // "videobroadcast" or "mediasync"
    int code;
    std::string payload;  // "key=value; key=value", keys as on the wire
    bool allZero;         // every byte of the record
    const void* context;
};

struct EventMember {
    std::string key;
    std::string type;            // as in the protocol file
    std::string shown;           // what the receiver gets, as text
    std::string when;            // the flag without which it is not read
    std::string complaint = {};  // of the log, when a pointer cannot be read
};

// An event of the platform, with a value for each member.
struct EventRow {
    std::string object;
    int code;
    std::string name;
    std::string event;  // on one line
    std::vector<EventMember> members;
};

// All events that are decoded, in the protocol's order.
const std::vector<EventRow>& EventRows();
void PrintTo(const EventRow& row, std::ostream* out);
std::string NameOfEvent(const ::testing::TestParamInfo<EventRow>& row);

// The event as the receiver shows it. `shown` replaces what members show.
std::string PayloadOf(const EventRow& row, const std::map<std::string, std::string>& shown = {});

class EventsFixture : public ::testing::Test {
  protected:
    using Vb = TolmVideoBroadcastAdaptorIpc;

    // Lines of a lower priority are dropped by the log.
    explicit EventsFixture(int leastPriority = ANDROID_LOG_VERBOSE);
    ~EventsFixture() override;

    static const void* Pointer(uintptr_t bits) { return reinterpret_cast<const void*>(bits); }

    Vb& Adaptor() { return *Vb::GetInstance(); }

    // Makes the receivers that keep what reaches them known to the adaptor.
    void Register(const void* context);
    void RegisterMediaSync(const void* context);

    void SendEvent(const std::string& text, int port = 7);

    // Sends an event that waits for a reply, and gives the reply's bytes; "no reply" when there is none.
    std::string Ask(const std::string& text, int port = 7);

    // All that was received, once everything sent so far has been handled.
    std::vector<ReceivedEvent> Received();

    // The adaptor's lines since the last call, as "priority message", once everything sent so far has been handled.
    std::vector<std::string> AdaptorLines();

    // As above, of another tag.
    std::vector<std::string> LinesOf(const std::string& tag);

    ScratchDirectory mDirectory;
    LogCapture mLog;
    FakePlatform mPlatform{"service_plugin_to_hbbtv_vb", "{\"ret\": 0}"};
    RawConnection mConnection;
    size_t mLinesSeen = 0;
};

class EventRowTest : public EventsFixture, public ::testing::WithParamInterface<EventRow> {
  protected:
    // The receiver of the row's object.
    void RegisterForRow(const void* context);
};

}  // namespace hbbtv::test
