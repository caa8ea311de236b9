// A program that links the wire alone: prints the request of IChannel.GetName.
#include <wire/message.h>
#include <wire/protocol.h>

#include <cstdio>

int main() {
    const hbbtv::WireFamily& channels = hbbtv::FindFamily("channel");
    Json::Value values(Json::objectValue);
    values["c_handle"] = 0x4f10;
    const Json::Value request = hbbtv::MakeRequest(channels, *channels.Operation("GetName"), values);
    std::printf("%s", hbbtv::WireText(request).c_str());
    return 0;
}
