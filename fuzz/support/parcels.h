// Parcels as bytes: those that proxies write, and those that stubs read.
#pragma once

#include <hwbinder/IBinder.h>
#include <hwbinder/Parcel.h>

#include <string>

#include "connection/frame.h"
#include "services.h"

namespace hbbtv::fuzz {

using android::hardware::Parcel;

// Returns the body as it is sent. Objects have the numbers 1, 2, ... of the sender.
std::string BodyOf(const Parcel& parcel);

// Reads a body. Returns false if its structure is invalid.
bool Adopt(const std::string& body, Parcel& parcel);

struct RecordedCall {
    uint32_t code = 0;
    bool oneWay = false;
    std::string body;
};

// Returns what the proxy of a service sends for a call with usual arguments.
RecordedCall RecordCall(const Service& service, const std::string& method);

// Returns a call of a client with usual arguments, which have no structs.
RecordedCall DescribeCall(const std::string& interface, const std::string& method);

// Returns a frame of a session.
std::string FrameOf(android::hardware::host::FrameHead head, const std::string& body);

}  // namespace hbbtv::fuzz
