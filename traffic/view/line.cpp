#include "traffic/view/line.h"

#include <algorithm>
#include <cstdio>

#include "common/text/json.h"
#include "common/text/pointer_text.h"
#include "common/text/printable.h"
#include "common/text/quote.h"
#include "common/text/utf8.h"
#include "traffic/view/members.h"

namespace hbbtv::traffic {

namespace {

constexpr size_t kLongestValue = 80;
constexpr size_t kMostMembers = 16;
constexpr uint64_t kDay = 86400ull * 1000000;

// Returns the beginning of a long text, cut between characters.
std::string Shortened(const std::string& text) {
    if (text.size() <= kLongestValue) return text;
    size_t end = kLongestValue;
    while (end > 0 && IsContinuation(text[end])) --end;
    return text.substr(0, end) + "...";
}

std::string ValueText(const Json::Value& value, const Names& names) {
    if (const std::optional<uint64_t> handle = HandleIn(value)) {
        const std::string name = names.Of(*handle);
        return HandleText(*handle) + (name.empty() ? "" : " " + Quoted(Shortened(name)));
    }
    if (value.isString()) return Quoted(Shortened(value.asString()));
    return Shortened(WriteJson(value));
}

std::string BytesText(const std::string& bytes) {
    return std::to_string(bytes.size()) + " bytes " + Quoted(Shortened(bytes));
}

std::string PeerText(const Peer& peer) {
    if (peer.pid == 0) return "an unknown process";
    return (peer.name.empty() ? "process" : peer.name) + " (" + std::to_string(peer.pid) + ")";
}

std::string ReplyText(const Record& record, const Names& names) {
    if (record.open) return " -> no reply yet";
    if (!record.reply) return record.WantsReply() ? " -> no reply" : "";
    const std::string members = MembersText(record, *record.reply, names);
    return " ->" + (record.status ? " " + std::to_string(*record.status) : "") + (members.empty() ? "" : " " + members);
}

std::string ExchangeText(const Record& record, const Names& names) {
    const std::string members = MembersText(record, record.message, names);
    std::string text = (record.event ? "* " : "  ") + FullName(record) + (members.empty() ? "" : " " + members);
    text += ReplyText(record, names);
    if (record.duration) text += "  " + DurationText(*record.duration);
    return text;
}

std::string Body(const Record& record, const Names& names) {
    switch (record.kind) {
        case Record::Kind::Exchange:
            return ExchangeText(record, names);
        case Record::Kind::Connected:
            return "+ " + FullName(record) + " connection " + std::to_string(record.connection) + ": library " +
                   PeerText(record.library) + ", platform " + PeerText(record.platform);
        case Record::Kind::Closed:
            return "- " + FullName(record) + " connection " + std::to_string(record.connection) + " closed";
        case Record::Kind::Damaged:
            return "? " + FullName(record) + " damaged: " + BytesText(record.message.raw);
        default:
            return "#" + std::string(record.socket.empty() ? "" : " " + FullName(record));
    }
}

}  // namespace

int64_t ZoneOffset(const std::string& zone) {
    int hours = 0;
    int minutes = 0;
    if (zone.size() != 6 || std::sscanf(zone.c_str() + 1, "%2d:%2d", &hours, &minutes) != 2) return 0;
    if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59) return 0;
    const int64_t offset = (hours * 60 + minutes) * int64_t{60000000};
    return zone[0] == '-' ? -offset : offset;
}

std::string TimeOfDay(uint64_t wall, const std::string& zone) {
    const uint64_t local = (wall % kDay + kDay + static_cast<uint64_t>(ZoneOffset(zone))) % kDay;
    const auto seconds = static_cast<unsigned>(local / 1000000);
    char text[40];
    std::snprintf(text, sizeof(text), "%02u:%02u:%02u.%06u", seconds / 3600, seconds / 60 % 60, seconds % 60,
                  static_cast<unsigned>(local % 1000000));
    return text;
}

std::string DurationText(uint64_t microseconds) {
    char text[40];
    const bool whole = microseconds >= 1000000;
    std::snprintf(text, sizeof(text), "%.3f %s", static_cast<double>(microseconds) / (whole ? 1e6 : 1e3),
                  whole ? "s" : "ms");
    return text;
}

std::string MembersText(const Record& record, const Message& message, const Names& names) {
    if (!message.Readable()) return message.raw.empty() && message.size == 0 ? "" : BytesText(message.raw);
    if (!message.json.isObject()) return Shortened(WriteJson(message.json));
    static const std::vector<std::string> status{"ret"};
    const std::vector<std::string>& hidden = &message == &record.message ? EnvelopeKeys(record) : status;
    std::string text;
    size_t shown = 0;
    size_t more = 0;
    for (const std::string& key : message.json.getMemberNames()) {
        if (std::find(hidden.begin(), hidden.end(), key) != hidden.end()) continue;
        if (++shown > kMostMembers) {
            ++more;
            continue;
        }
        text += (text.empty() ? "" : " ") + Shortened(key) + "=" + ValueText(message.json[key], names);
    }
    return more == 0 ? text : text + " and " + std::to_string(more) + " more";
}

std::string Line(const Record& record, const Names& names, const std::string& zone) {
    std::string text = TimeOfDay(record.time.Wall(), zone) + " " + Body(record, names);
    if (!record.rule.empty()) text += "  [" + record.rule + "]";
    if (!record.note.empty()) text += "  # " + record.note;
    return Printable(text);
}

}  // namespace hbbtv::traffic
