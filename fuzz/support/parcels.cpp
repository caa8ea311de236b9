#include "parcels.h"

#include <hidl/HidlBinderSupport.h>
#include <sys/uio.h>

#include <cstring>
#include <memory>

#include "input.h"
#include "package_values.h"

namespace hbbtv::fuzz {

namespace {

using namespace android::hardware;
using android::status_t;

// A remote object that keeps the last call and answers nothing.
class Recorder : public IBinder {
  public:
    status_t transact(uint32_t code, const Parcel& data, Parcel*, uint32_t flags, TransactCallback) override {
        mCall = {code, (flags & FLAG_ONEWAY) != 0, BodyOf(data)};
        return android::UNKNOWN_ERROR;
    }
    status_t linkToDeath(const android::sp<DeathRecipient>&, void*, uint32_t) override { return android::OK; }
    status_t unlinkToDeath(const android::wp<DeathRecipient>&, void*, uint32_t, android::wp<DeathRecipient>*) override {
        return android::OK;
    }

    const RecordedCall& Call() const { return mCall; }

  private:
    RecordedCall mCall;
};

void WriteText(const std::string& text, Parcel& parcel) {
    const hidl_string value(text);
    size_t handle = 0;
    parcel.writeBuffer(&value, sizeof(value), &handle);
    writeEmbeddedToParcel(value, &parcel, handle, 0);
}

void WriteTexts(const Json::Value& texts, Parcel& parcel) {
    const auto value = FromJson<hidl_vec<hidl_string>>(texts);
    size_t handle = 0;
    size_t elements = 0;
    parcel.writeBuffer(&value, sizeof(value), &handle);
    writeEmbeddedToParcel(value, &parcel, handle, 0, &elements);
    for (size_t i = 0; i < value.size(); ++i) {
        writeEmbeddedToParcel(value[i], &parcel, elements, i * sizeof(hidl_string));
    }
}

void WriteValue(const Type& type, const Json::Value& value, Parcel& parcel) {
    switch (type.kind) {
        case Type::Kind::Bool:
            parcel.writeBool(value.asBool());
            break;
        case Type::Kind::Integer:
        case Type::Kind::Enum:
            type.bits == 64 ? parcel.writeInt64(value.asInt64()) : parcel.writeInt32(value.asInt());
            break;
        case Type::Kind::Real:
            parcel.writeDouble(value.asDouble());
            break;
        case Type::Kind::Text:
            WriteText(value.asString(), parcel);
            break;
        case Type::Kind::Vector:
            WriteTexts(value, parcel);
            break;
        case Type::Kind::Struct:
        case Type::Kind::Callback:
            break;  // no client has them
    }
}

}  // namespace

std::string BodyOf(const Parcel& parcel) {
    std::vector<host::WireNode> nodes;
    for (const auto& node : parcel.nodes()) {
        if (node == nullptr) {
            nodes.push_back({host::WireNode::kNull, 0, 0});
        } else {
            nodes.push_back({host::WireNode::kSenders, 0, nodes.size() + 1});
        }
    }
    host::WireHead head;
    iovec pieces[Parcel::kMaxPieces];
    const int count = parcel.wirePieces(&head, nodes.data(), pieces);
    std::string body;
    for (int i = 0; i < count; ++i) body.append(static_cast<const char*>(pieces[i].iov_base), pieces[i].iov_len);
    return body;
}

bool Adopt(const std::string& body, Parcel& parcel) {
    const size_t words = (body.size() + 7) / 8;
    auto copy = std::make_unique<uint64_t[]>(words);
    memcpy(copy.get(), body.data(), body.size());
    return parcel.adopt(std::move(copy), words * 8);
}

RecordedCall RecordCall(const Service& service, const std::string& method) {
    const android::sp<Recorder> recorder = new Recorder;
    const auto proxy = service.proxyOf(recorder);
    const Method* const definition = Package::Get().FindInterface(service.interface).Find(method);
    CallMethod(*proxy, service.interface, method, UsualValues(definition->arguments));
    return recorder->Call();
}

RecordedCall DescribeCall(const std::string& interface, const std::string& method) {
    const Interface& described = Package::Get().FindInterface(interface);
    RecordedCall call;
    Parcel parcel;
    parcel.writeInterfaceToken((Package::Get().name + "::" + interface).c_str());
    for (size_t i = 0; i < described.methods.size(); ++i) {
        if (described.methods[i].name != method) continue;
        call.code = static_cast<uint32_t>(i + 1);
        for (const Parameter& parameter : described.methods[i].arguments) {
            WriteValue(*parameter.type, UsualValue(*parameter.type), parcel);
        }
    }
    call.body = BodyOf(parcel);
    return call;
}

std::string FrameOf(host::FrameHead head, const std::string& body) {
    head.magic = host::FrameHead::kMagic;
    head.bodySize = static_cast<uint32_t>(body.size());
    return std::string(reinterpret_cast<const char*>(&head), sizeof(head)) + body;
}

}  // namespace hbbtv::fuzz
