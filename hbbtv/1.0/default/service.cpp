// The process that publishes the HIDL interfaces of this package. Loads their implementations from the library
// vantorel.hardware.hbbtv@1.0-impl.

#include <android/log.h>
#include <hidl/HidlTransportSupport.h>
#include <hidl/LegacySupport.h>
#include <vantorel/hardware/hbbtv/1.0/IAVComponent.h>
#include <vantorel/hardware/hbbtv/1.0/IAVControl.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationManager.h>
#include <vantorel/hardware/hbbtv/1.0/IApplicationPrivatedata.h>
#include <vantorel/hardware/hbbtv/1.0/ICapabilities.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>
#include <vantorel/hardware/hbbtv/1.0/IConfiguration.h>
#include <vantorel/hardware/hbbtv/1.0/IDsmcc.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteList.h>
#include <vantorel/hardware/hbbtv/1.0/IFavouriteListCollection.h>
#include <vantorel/hardware/hbbtv/1.0/ILocalSystem.h>
#include <vantorel/hardware/hbbtv/1.0/IMtm.h>
#include <vantorel/hardware/hbbtv/1.0/IParentalControlManager.h>
#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>
#include <vantorel/hardware/hbbtv/1.0/ISearchManager.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <csignal>
#include <optional>

#include "ipc/src/tolm_caller_queue.h"
#include "ipc/src/tolm_socket_directory.h"
#include "service_arguments.h"
#include "service_claim.h"
#include "service_report.h"

using ::android::OK;
using ::android::hardware::configureRpcThreadpool;
using ::android::hardware::joinRpcThreadpool;
using ::android::hardware::registerPassthroughServiceImplementation;
using namespace ::vantorel::hardware::hbbtv::V1_0;

namespace {

// A family that stops answering blocks the thread of its open request and those that wait for their turn, or for their
// turn to register a client; one that stops reading also blocks those of one-way messages. The pool has room for all
// families in that state, one thread that refuses whoever comes next, and one that answers debug. Threads are created
// only when they are needed.
constexpr size_t kFamilies = 18;
constexpr size_t kWithOneWay = 5;     // families that have one-way messages
constexpr size_t kRegistrations = 8;  // interfaces that register clients
constexpr size_t kMostWaiting = tolm::CallerQueue::kMostWaiting;
constexpr size_t kThreads = (kFamilies + kWithOneWay) * (1 + kMostWaiting) + kRegistrations * kMostWaiting + 2;

constexpr int kServedByAnother = 3;

template <typename Interface>
bool Publish() {
    if (registerPassthroughServiceImplementation<Interface>() == OK) {
        Report(ANDROID_LOG_INFO, "serving %s/default", Interface::descriptor);
        return true;
    }
    Report(ANDROID_LOG_ERROR, "cannot serve %s/default", Interface::descriptor);
    return false;
}

// Returns whether all interfaces were published.
bool PublishAll() {
    bool published = true;
    published &= Publish<IAVComponent>();
    published &= Publish<IAVControl>();
    published &= Publish<IApplicationManager>();
    published &= Publish<IApplicationPrivatedata>();
    published &= Publish<ICapabilities>();
    published &= Publish<IChannel>();
    published &= Publish<IChannelConfig>();
    published &= Publish<IChannelList>();
    published &= Publish<IConfiguration>();
    published &= Publish<IDsmcc>();
    published &= Publish<IFavouriteList>();
    published &= Publish<IFavouriteListCollection>();
    published &= Publish<ILocalSystem>();
    published &= Publish<IMtm>();
    published &= Publish<IParentalControlManager>();
    published &= Publish<IProgramme>();
    published &= Publish<ISearchManager>();
    published &= Publish<IVideoBroadcast>();
    return published;
}

}  // namespace

int main(int argc, char** argv) {
    // The reader of the output may end; clients must not notice.
    signal(SIGPIPE, SIG_IGN);
    if (const std::optional<int> exitCode = TakeArguments(argc, argv)) return *exitCode;
    if (!ClaimDirectories()) return kServedByAnother;
    tolm::CheckSocketDirectory();
    configureRpcThreadpool(kThreads, true /* callerWillJoin */);
    if (!PublishAll()) {
        Report(ANDROID_LOG_ERROR,
               "is vantorel.hardware.hbbtv@1.0-impl.so on the library path? On a television, is the "
               "package in the device's manifest?");
        return 1;
    }
    joinRpcThreadpool();
    return 0;
}
