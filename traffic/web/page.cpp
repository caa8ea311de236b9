#include "traffic/web/page.h"

#include "common/text/json.h"
#include "traffic/web/page_pieces.h"
#include "wire/message.h"
#include "wire/protocol.h"

namespace hbbtv::traffic {

namespace {

// Records of a script element: the page reads one while the next arrives.
constexpr size_t kBlock = 1000;

// Returns JSON that can be in a script element: no "</script>", no "<!--". In JSON, "<" is only in strings.
std::string Embedded(const std::string& json) {
    std::string text;
    text.reserve(json.size());
    for (const char c : json) {
        if (c == '<') {
            text += "\\u003c";
        } else {
            text += c;
        }
    }
    return text;
}

Json::Value MembersOf(const Json::Value& members) {
    std::string counts;
    for (const Json::Value& member : members) counts += " " + member["repeat"].asString() + " ";
    Json::Value list(Json::arrayValue);
    for (const Json::Value& member : members) {
        Json::Value row(Json::objectValue);
        for (const char* key : {"key", "type", "handle", "repeat"}) {
            if (member.isMember(key)) row[key] = member[key];
        }
        // Its type on the command line is another one than on the wire.
        if (member.isMember("fields")) row["type"] = "columns";
        if (counts.find(" " + member["key"].asString() + " ") != std::string::npos) row["counts"] = true;
        list.append(row);
    }
    return list;
}

Json::Value EntriesOf(const WireFamily& family, bool events) {
    Json::Value list(Json::arrayValue);
    for (const Json::Value& entry : family.protocol[events ? "events" : "operations"]) {
        Json::Value row(Json::objectValue);
        for (const char* key : {"name", "method", "callback", "effect", "doc"}) {
            if (entry.isMember(key)) row[key] = entry[key];
        }
        row["members"] = MembersOf(events ? EventMembers(family, entry) : entry["request"]);
        list.append(row);
    }
    return list;
}

Json::Value EnvelopeKeys(const Json::Value& envelope) {
    Json::Value keys(Json::arrayValue);
    for (const char* part : {"type", "code"}) {
        if (envelope.isObject() && envelope[part].isObject()) keys.append(envelope[part]["key"]);
    }
    return keys;
}

// Returns what the page uses of protocol/.
Json::Value ProtocolForPage() {
    Json::Value families(Json::objectValue);
    for (const WireFamily& family : WireFamilies()) {
        Json::Value& entry = families[family.name];
        entry["envelope"] = EnvelopeKeys(family.protocol["envelope"]);
        entry["event_envelope"] = EnvelopeKeys(family.protocol["event_envelope"]);
        entry["operations"] = EntriesOf(family, false);
        entry["events"] = EntriesOf(family, true);
    }
    return families;
}

std::string Begin(const PageSettings& settings) {
    Json::Value value(Json::objectValue);
    value["live"] = settings.live;
    value["simulator"] = settings.simulator;
    value["head"]["program"] = settings.head.program;
    value["head"]["directory"] = settings.head.directory;
    value["head"]["zone"] = settings.head.zone;
    value["protocol"] = ProtocolForPage();
    return std::string(kBeforePolicy) + (settings.live ? "'self'" : "'none'") + kBeforeSettings +
           Embedded(WriteJson(value)) + kBeforeRecords;
}

}  // namespace

std::string LivePage(const PageSettings& settings) {
    return Begin(settings) + kEnd;
}

HtmlWriter::HtmlWriter(const RecordingHead& head, Write write) : mWrite(std::move(write)) {
    mWrite(Begin({head, false, false}));
}

void HtmlWriter::Add(const Record& record) {
    const std::string begin = mInBlock == 0 ? "<script type=\"application/x-ndjson\">\n" : "";
    mWrite(begin + Embedded(WriteJson(ToJson(record))) + "\n");
    if (++mInBlock == kBlock) EndBlock();
}

void HtmlWriter::EndBlock() {
    if (mInBlock > 0) mWrite("</script>\n");
    mInBlock = 0;
}

void HtmlWriter::Finish() {
    EndBlock();
    mWrite(kEnd);
}

}  // namespace hbbtv::traffic
