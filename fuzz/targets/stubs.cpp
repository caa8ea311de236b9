// Any parcel into the generated stubs: those of the services and those of the clients. The first line is the method, or
// the interface and a number ("IChannel.256921159"), and "one-way" if it is called so; the rest is the parcel.
#include <hidl/HidlBinderSupport.h>

#include <algorithm>

#include "common/failure.h"
#include "input.h"
#include "json_mutation.h"
#include "package_values.h"
#include "parcels.h"
#include "played_platform.h"
#include "services.h"
#include "usual_messages.h"

namespace hbbtv::fuzz {

namespace {

using namespace android::hardware;

struct Called {
    const Service* object = nullptr;
    uint32_t code = 0;
};

Called Find(const std::string& name) {
    const std::string interface = name.substr(0, name.find('.'));
    const std::string method = name.substr(std::min(name.size(), interface.size() + 1));
    Called called;
    for (const std::vector<Service>* list : {&Services(), &Clients()}) {
        for (const Service& service : *list) {
            if (service.interface == interface) called.object = &service;
        }
    }
    if (called.object == nullptr) throw Failure(kUsage, interface);
    called.code = static_cast<uint32_t>(std::strtoul(method.c_str(), nullptr, 10));
    const std::vector<Method>& methods = Package::Get().FindInterface(interface).methods;
    for (size_t i = 0; i < methods.size(); ++i) {
        if (methods[i].name == method) called.code = static_cast<uint32_t>(i + 1);
    }
    return called;
}

// As a session does: the sender's objects are clients, and the receiver's are services.
bool ResolveNodes(Parcel& parcel) {
    size_t count = 0;
    const host::WireNode* const wire = parcel.wireNodes(&count);
    std::vector<android::sp<IBinder>> nodes;
    for (size_t i = 0; i < count; ++i) {
        const std::vector<Service>& list = wire[i].kind == host::WireNode::kSenders ? Clients() : Services();
        if (wire[i].kind > host::WireNode::kReceivers) return false;
        nodes.push_back(wire[i].kind == host::WireNode::kNull
                            ? nullptr
                            : getOrCreateCachedBinder(list[wire[i].number % list.size()].object.get()));
    }
    parcel.setNodes(std::move(nodes));
    return true;
}

void SetReply(const std::string& name) {
    const std::string::size_type dot = name.find('.');
    const Json::Value* operation = nullptr;
    try {
        operation = dot == std::string::npos ? nullptr : OperationOf(Package::Get().FindMethod(name));
    } catch (const Failure&) {
        // A method that each interface has.
    }
    PlayedPlatform::Get().AnswerWith(operation == nullptr ? "{\"ret\":0}" : UsualReply(*operation).toStyledString());
}

void CallStub(const Called& called, bool oneWay, const std::string& body) {
    Parcel data;
    if (!Adopt(body, data) || !ResolveNodes(data)) return;
    const android::sp<BHwBinder> stub = getOrCreateCachedBinder(called.object->object.get())->localBinder();
    Parcel reply;
    size_t answers = 0;
    const auto answer = [&](Parcel& results) {
        ++answers;
        Parcel received;
        FUZZ_CHECK(results.writeError() == android::OK && Adopt(BodyOf(results), received));
    };
    const auto status = stub->onTransact(called.code, data, &reply, oneWay ? IBinder::FLAG_ONEWAY : 0u, answer);
    FUZZ_CHECK(answers <= 1);
    Parcel received;
    if (answers == 0 && status == android::OK) FUZZ_CHECK(Adopt(BodyOf(reply), received));
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    hbbtv::fuzz::ScratchDirectory();
    hbbtv::fuzz::RegisterClient();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const Addressed input = Split(data, size);
    const std::vector<std::string> words = Words(input.line);
    if (words.empty()) return -1;
    try {
        const Called called = Find(words[0]);
        SetReply(words[0]);
        CallStub(called, words.size() > 1 && words[1] == "one-way", input.rest);
    } catch (const hbbtv::Failure&) {
        return -1;  // another name
    }
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t mostBytes, unsigned seed) {
    using namespace hbbtv::fuzz;
    Random random(seed);
    Addressed input = Split(data, size);
    if (Below(random, 16) == 0) {
        input.line = input.line.substr(0, input.line.find('.')) + "." + std::to_string(Below(random, 80));
    } else if (Below(random, 32) == 0) {
        input.line += " one-way";
    } else {
        input.rest = MutatedBytes(input.rest, std::max(mostBytes, input.line.size() + 1) - input.line.size() - 1);
    }
    return Store(input.line + "\n" + input.rest, data, mostBytes);
}
