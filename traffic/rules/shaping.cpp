#include "traffic/rules/shaping.h"

#include <cstring>
#include <utility>

#include "common/frame.h"

namespace hbbtv::traffic {

namespace {

// Of requests that are not answered.
constexpr size_t kMostAsked = 1000;

FrameHeader HeaderOf(const std::string& bytes) {
    FrameHeader header;
    std::memcpy(&header, bytes.data(), sizeof(header));
    return header;
}

Message MessageOf(const std::string& bytes) {
    const FrameHeader header = HeaderOf(bytes);
    Message message;
    message.type = header.type;
    message.port = header.port;
    message.size = header.size;
    SetPayload(message, bytes.substr(kHeaderSize));
    return message;
}

bool IsComplete(const std::string& bytes) {
    return bytes.size() >= kHeaderSize && bytes.size() - kHeaderSize >= HeaderOf(bytes).size;
}

bool IsTooLong(const std::string& bytes) {
    return bytes.size() >= kHeaderSize && HeaderOf(bytes).size > kLargestPayload;
}

}  // namespace

void Shaping::Collect(Direction direction, const char* bytes, size_t count) {
    Bytes(direction).append(bytes, count);
}

std::optional<Shaping::Step> Shaping::Next(Direction direction) {
    std::string& bytes = Bytes(direction);
    if (!IsComplete(bytes) || IsTooLong(bytes)) return std::nullopt;
    Step step;
    step.message = bytes.substr(0, kHeaderSize + HeaderOf(bytes).size);
    bytes.erase(0, step.message.size());
    step.verdict = Judge(direction, step.message);
    return step;
}

std::string Shaping::Rest(Direction direction, bool end) {
    return end || IsTooLong(Bytes(direction)) ? std::exchange(Bytes(direction), "") : "";
}

Verdict Shaping::Judge(Direction direction, const std::string& message) {
    const bool reply = direction == Direction::kToCaller;
    Record record;
    if (reply) {
        if (!mAsked.empty()) {
            record = std::move(mAsked.front());
            mAsked.pop_front();
        }
        record.reply = MessageOf(message);
        record.duration = TimeStamp().Monotonic() - record.time.Monotonic();
        const Json::Value& members = record.reply->json;
        if (members.isObject() && members["ret"].isInt()) record.status = members["ret"].asInt();
    } else {
        record.time = TimeStamp();
        record.message = MessageOf(message);
    }
    record.connection = mAbout.number;
    record.event = IsOfLibrary(mAbout.socket);
    record.library = record.event ? mAbout.server : mAbout.caller;
    record.platform = record.event ? mAbout.caller : mAbout.server;
    Identify(record, mAbout.socket);
    const Verdict verdict = mRules.Apply(record, reply, message);

    if (!reply && record.WantsReply() && !verdict.forward.empty() && mAsked.size() < kMostAsked) {
        mAsked.push_back(std::move(record));
    }
    return verdict;
}

}  // namespace hbbtv::traffic
