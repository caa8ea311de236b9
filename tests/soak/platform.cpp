// The platform of a soak run: replies with the number of the request, and sends numbered events on its own accord.

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "board.h"
#include "common/failure.h"
#include "common/frame.h"
#include "common/local_socket.h"
#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "raw_socket.h"
#include "roles.h"
#include "rows.h"
#include "wire/connection.h"
#include "wire/endpoint.h"

namespace hbbtv::soak {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kBetweenEvents{5};
constexpr milliseconds kLimit{60000};
constexpr uint32_t kEventsUntilReply = 32;  // the platform waits for a reply to see that it is not far ahead
constexpr uint32_t kEventsOfConnection = 512;

std::string PathOf(const Endpoint& endpoint) {
    return hbbtv::PathOf(DefaultDirectory(), endpoint);
}

// The number of a request: an integer, a handle or decimal digits.
uint64_t NumberOf(const Json::Value& value) {
    if (!value.isString()) return value.asUInt64();
    const std::string text = value.asString();
    return text.rfind("0x", 0) == 0 ? ParsePointer(text).value_or(0) : std::stoull(text);
}

void TakeOneWay(Board& board, const Json::Value& message) {
    const int sender = message["component_type"].asInt();
    const auto generation = static_cast<uint32_t>(sender / 1000);
    OneWayCounts& counts = board.oneWay[sender % 1000];
    const uint32_t number = message["current_component_index"].asUInt();
    const uint64_t platform = board.platforms;
    const bool continues = counts.takenGeneration == generation && counts.takenPlatform == platform;
    if (continues && number != counts.taken + 1) {
        board.Fail("one-way message " + std::to_string(number) + " arrived after " + std::to_string(counts.taken));
    }
    counts.takenGeneration = generation;
    counts.takenPlatform = platform;
    counts.taken = number;
}

void Serve(Board& board, const CallRow& row, int fd) {
    test::RawConnection connection(fd);
    uint64_t own = 0;
    while (const auto frame = connection.ReadFrame(std::chrono::hours(24))) {
        const Json::Value message = ParseJson(frame->payload);
        if (&row == &kCalls[kOneWayFamily]) {
            TakeOneWay(board, message);
        } else if (frame->type == kRequest) {
            // The registrations of callbacks have no number.
            const uint64_t number = *row.key == '\0' ? ++own : NumberOf(message[row.key]);
            const std::string reply = Replace(row.reply, '$', std::to_string(number));
            connection.Write(test::FrameBytes(kReply, frame->port, Replace(reply, '#', HexText(number).substr(2))));
        }
    }
}

// The service has one connection to each socket, so this thread serves it.
void Listen(Board& board, const CallRow& row) {
    const std::string path = PathOf(RequestsOf(FindFamily(row.family)));
    unlink(path.c_str());
    const int listening = ListenOn(path);
    if (listening < 0) return board.Fail("the platform cannot listen on " + path);
    std::thread([&board, &row, listening] {
        for (;;) {
            pollfd ready{listening, POLLIN, 0};
            poll(&ready, 1, -1);
            const int fd = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd >= 0) std::thread(Serve, std::ref(board), std::cref(row), fd).detach();
        }
    }).detach();
}

// Sends an event. Returns whether its reply, if it has one, is right.
bool SendEvent(WireConnection& connection, const EventRow& row, int port, uint32_t number) {
    const std::string character(1, static_cast<char>('0' + (row.modulus == 0 ? 0 : number % row.modulus)));
    const std::string payload = Replace(Replace(row.payload, '$', std::to_string(number)), '@', character);
    connection.Send(Encode({row.request ? kRequest : kOneWay, port, payload}), kLimit);
    if (!row.request) return true;
    const Json::Value reply = ParseJson(connection.Receive(kLimit).payload);
    return reply.isObject() && reply["ret"] == 0 && reply["render_id"].asUInt() == number;
}

// Sends events on a connection of its own.
void SendEvents(Board& board, int event) {
    const EventRow& row = kEvents[event];
    const Endpoint endpoint = EventsOf(FindFamily(row.family));
    WireConnection connection(PathOf(endpoint));
    for (uint32_t sent = 0; sent < kEventsOfConnection; ++sent) {
        board.RestWhilePaused(kPlatform);
        const uint64_t disturbance = board.disturbance;
        const uint32_t number = board.events[event].next;
        const bool right = SendEvent(connection, row, endpoint.port, number);
        if (!right && disturbance % 2 == 0 && disturbance == board.disturbance) {
            board.Fail(std::string("event ") + std::to_string(number) + " of " + row.family + " got a wrong reply");
        }
        board.events[event].next = number + 1;
        if ((sent + 1) % kEventsUntilReply == 0) {
            connection.Send(Encode({kRequest, endpoint.port, "{}"}), kLimit);
            connection.Receive(kLimit);
        }
        std::this_thread::sleep_for(kBetweenEvents);
    }
}

}  // namespace

int RunPlatform() {
    Board& board = OpenBoard();
    board.busy[kPlatform] = kEventFamilies;
    for (const CallRow& row : kCalls) Listen(board, row);
    std::vector<std::thread> senders;
    for (int event = 0; event < kEventFamilies; ++event) {
        senders.emplace_back([&board, event] {
            for (;;) {
                try {
                    SendEvents(board, event);
                } catch (const Failure& failure) {
                    // The library opens the socket when a client first uses the family.
                    board.RestWhilePaused(kPlatform);
                    if (failure.Code() != kUnavailable) board.Fail(failure.what());
                    std::this_thread::sleep_for(milliseconds(20));
                }
            }
        });
    }
    printf("ready\n");
    fflush(stdout);
    for (std::thread& sender : senders) sender.join();
    return 0;
}

}  // namespace hbbtv::soak
