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

void Shaping::PassedOn(Direction direction, const FrameHeader& header) {
    if (direction == Direction::kToCaller) {
        if (!mAsked.empty() && mAsked.front().answer.empty()) mAsked.pop_front();
    } else if (header.type == kRequest && mAsked.size() < kMostAsked) {
        mAsked.push_back({});
    }
}

void Shaping::Answer(const std::string& message) {
    if (mAsked.size() >= kMostAsked) {
        mAsked.clear();
        mAnswers = 0;
    }
    mAsked.push_back({nullptr, message});
    ++mAnswers;
}

std::optional<Shaping::Step> Shaping::NextAnswer() {
    if (mAsked.empty() || mAsked.front().answer.empty()) return std::nullopt;
    Step step;
    step.message = std::move(mAsked.front().answer);
    step.verdict.forward = step.message;
    mAsked.pop_front();
    --mAnswers;
    return step;
}

std::optional<Shaping::Step> Shaping::Next(Direction direction) {
    if (direction == Direction::kToCaller) {
        std::optional<Step> answer = NextAnswer();
        if (answer) return answer;
    }
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
            if (mAsked.front().request) record = std::move(*mAsked.front().request);
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
        mAsked.push_back({std::make_unique<Record>(std::move(record)), ""});
    }
    return verdict;
}

}  // namespace hbbtv::traffic
