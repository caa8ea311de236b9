#include "traffic/export/pcapng.h"

#include <algorithm>

#include "common/frame.h"

namespace hbbtv::traffic {

namespace {

constexpr uint32_t kSectionHeader = 0x0a0d0d0a;
constexpr uint32_t kInterface = 1;
constexpr uint32_t kEnhancedPacket = 6;
constexpr uint16_t kUser0 = 147;

constexpr uint16_t kComment = 1;
constexpr uint16_t kApplication = 4;  // of a section
constexpr uint16_t kName = 2;         // of an interface
constexpr uint16_t kDescription = 3;  // of an interface
constexpr uint16_t kFlags = 2;        // of a packet
constexpr size_t kLongestOption = 4096;

constexpr uint32_t kInbound = 1;
constexpr uint32_t kOutbound = 2;

// The header of a packet that the dissector knows.
constexpr char kVersion = 1;
constexpr char kToPlatform = 1;
constexpr char kToLibrary = 2;
constexpr char kDamaged = 1;
constexpr char kHasTime = 2;

// Fields of the file are in the byte order of this machine, which its first block shows.
template <typename Number>
std::string Field(Number number) {
    return std::string(reinterpret_cast<const char*>(&number), sizeof(number));
}

template <typename Number>
std::string BigEndian(Number number) {
    std::string bytes;
    for (size_t i = sizeof(number); i-- > 0;) bytes += static_cast<char>(number >> (8 * i) & 0xff);
    return bytes;
}

std::string Padded(std::string bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
    return bytes;
}

std::string Option(uint16_t code, const std::string& value) {
    const std::string text = value.substr(0, kLongestOption);
    return Field(code) + Field(static_cast<uint16_t>(text.size())) + Padded(text);
}

// An empty text has no option.
std::string TextOption(uint16_t code, const std::string& text) {
    return text.empty() ? "" : Option(code, text);
}

std::string Block(uint32_t type, const std::string& body) {
    const std::string length = Field(static_cast<uint32_t>(body.size() + 12));
    return Field(type) + length + body + length;
}

std::string EndOfOptions() {
    return Field(uint32_t{0});
}

std::string FileStart(const RecordingHead& head) {
    const std::string section = Field(uint32_t{0x1a2b3c4d}) + Field(uint16_t{1}) + Field(uint16_t{0}) +
                                Field(int64_t{-1}) + TextOption(kApplication, head.program) + EndOfOptions();
    const std::string interface = Field(kUser0) + Field(uint16_t{0}) + Field(uint32_t{0}) + Option(kName, "hbbtv") +
                                  TextOption(kDescription, head.directory) + EndOfOptions();
    return Block(kSectionHeader, section) + Block(kInterface, interface);
}

std::string SocketBytes(const Record& record, const Message& message) {
    if (record.kind == Record::Kind::Damaged) return message.raw;
    const std::string payload = PayloadOf(message);
    // The size that was announced: of a message that is cut, the rest is missing.
    const uint32_t size = message.Readable() ? static_cast<uint32_t>(payload.size()) : message.size;
    return Field(size) + Field(message.type) + Field(message.port) + payload;
}

std::string PacketData(const Record& record, const Message& message, bool reply, bool toPlatform) {
    const bool damaged = record.kind == Record::Kind::Damaged;
    const bool timed = reply && record.duration.has_value();
    const std::string socket = record.socket.substr(0, 255);
    const char flags = static_cast<char>((damaged ? kDamaged : 0) | (timed ? kHasTime : 0));
    const uint64_t time = std::min<uint64_t>(record.duration.value_or(0), UINT32_MAX);
    return std::string{kVersion, toPlatform ? kToPlatform : kToLibrary, flags, static_cast<char>(socket.size())} +
           BigEndian(static_cast<uint32_t>(record.connection)) + BigEndian(static_cast<uint32_t>(record.library.pid)) +
           BigEndian(static_cast<uint32_t>(record.platform.pid)) + BigEndian(static_cast<uint32_t>(timed ? time : 0)) +
           BigEndian(record.number) + socket + SocketBytes(record, message);
}

}  // namespace

PcapngWriter::PcapngWriter(const RecordingHead& head, size_t window,
                           std::function<void(const std::string& bytes)> write)
    : mWindow(window), mWrite(std::move(write)) {
    mWrite(FileStart(head));
}

void PcapngWriter::Add(const Record& record) {
    if (record.kind != Record::Kind::Exchange && record.kind != Record::Kind::Damaged) return;
    AddPacket(record, record.message, false);
    if (record.reply) AddPacket(record, *record.reply, true);
    while (mWaiting.size() > mWindow) {
        mWrite(mWaiting.begin()->second);
        mWaiting.erase(mWaiting.begin());
    }
}

void PcapngWriter::Finish() {
    for (const auto& [time, packet] : mWaiting) mWrite(packet);
    mWaiting.clear();
}

void PcapngWriter::AddPacket(const Record& record, const Message& message, bool reply) {
    const bool toPlatform = record.event == reply;
    const std::string data = PacketData(record, message, reply, toPlatform);
    const uint64_t time = record.time.Wall() + (reply ? record.duration.value_or(0) : 0);
    const uint32_t length = static_cast<uint32_t>(data.size());
    const std::string comment =
        record.rule.empty() || record.note.empty() ? record.rule + record.note : record.rule + "; " + record.note;
    const std::string packet = Field(uint32_t{0}) + Field(static_cast<uint32_t>(time >> 32)) +
                               Field(static_cast<uint32_t>(time)) + Field(length) + Field(length) + Padded(data) +
                               TextOption(kComment, comment) +
                               Option(kFlags, Field(toPlatform ? kOutbound : kInbound)) + EndOfOptions();
    mWaiting.emplace(time, Block(kEnhancedPacket, packet));
}

}  // namespace hbbtv::traffic
