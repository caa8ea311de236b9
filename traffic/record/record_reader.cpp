#include "traffic/record/record_reader.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include <stdexcept>

#include "common/text/base64.h"

namespace hbbtv::traffic {

namespace {

using Value = rapidjson::Value;

constexpr int kDeepestPayload = 100;
constexpr size_t kMemory = 64u << 10;

// An object whose members may be missing; they have the type if they are there.
class Members {
  public:
    explicit Members(const Value* object) : mObject(object) {}

    // Returns null if there is none.
    const Value* Find(const char* key) const {
        if (mObject == nullptr) return nullptr;
        const auto found = mObject->FindMember(key);
        return found == mObject->MemberEnd() || found->value.IsNull() ? nullptr : &found->value;
    }

    std::string Text(const char* key) const {
        const Value* value = Typed(key, &Value::IsString, "a string");
        return value == nullptr ? "" : std::string(value->GetString(), value->GetStringLength());
    }

    uint64_t Count(const char* key) const {
        const Value* value = Typed(key, &Value::IsUint64, "a count");
        return value == nullptr ? 0 : value->GetUint64();
    }

    // Microseconds. Sums of a few of them, and numbers of JavaScript, hold them.
    uint64_t Time(const char* key) const {
        const uint64_t time = Count(key);
        if (time >= uint64_t{1} << 53)
            throw std::runtime_error(std::string("\"") + key + "\" is not a time below 2^53 us");
        return time;
    }

    unsigned Unsigned(const char* key) const {
        const Value* value = Typed(key, &Value::IsUint, "a count below 2^32");
        return value == nullptr ? 0 : value->GetUint();
    }

    int Number(const char* key) const {
        const Value* value = Typed(key, &Value::IsInt, "a number");
        return value == nullptr ? 0 : value->GetInt();
    }

    bool Flag(const char* key) const {
        const Value* value = Typed(key, &Value::IsBool, "true or false");
        return value != nullptr && value->GetBool();
    }

    Members Object(const char* key) const { return Members(Typed(key, &Value::IsObject, "an object")); }

  private:
    const Value* Typed(const char* key, bool (Value::*is)() const, const char* type) const {
        const Value* value = Find(key);
        if (value != nullptr && !(value->*is)()) {
            throw std::runtime_error("\"" + std::string(key) + "\" is not " + type);
        }
        return value;
    }

    const Value* mObject;
};

Json::Value Converted(const Value& value, int depth);

Json::Value ConvertedNumber(const Value& value) {
    if (value.IsInt64()) return static_cast<Json::Int64>(value.GetInt64());
    if (value.IsUint64()) return static_cast<Json::UInt64>(value.GetUint64());
    return value.GetDouble();
}

Json::Value ConvertedObject(const Value& value, int depth) {
    Json::Value object(Json::objectValue);
    for (const auto& member : value.GetObject()) {
        object[std::string(member.name.GetString(), member.name.GetStringLength())] = Converted(member.value, depth);
    }
    return object;
}

Json::Value ConvertedArray(const Value& value, int depth) {
    Json::Value array(Json::arrayValue);
    for (const Value& item : value.GetArray()) array.append(Converted(item, depth));
    return array;
}

Json::Value Converted(const Value& value, int depth) {
    if (depth > kDeepestPayload) throw std::runtime_error("\"json\" nests too deeply");
    switch (value.GetType()) {
        case rapidjson::kObjectType:
            return ConvertedObject(value, depth + 1);
        case rapidjson::kArrayType:
            return ConvertedArray(value, depth + 1);
        case rapidjson::kStringType:
            return std::string(value.GetString(), value.GetStringLength());
        case rapidjson::kNumberType:
            return ConvertedNumber(value);
        case rapidjson::kNullType:
            return {};
        default:
            return value.GetBool();
    }
}

Peer PeerOf(const Members& members) {
    return {members.Number("pid"), members.Unsigned("uid"), members.Text("name")};
}

Message MessageOf(const Members& members, Payloads payloads) {
    Message message;
    message.type = members.Number("type");
    message.port = members.Number("port");
    message.size = members.Unsigned("size");
    const Value* json = members.Find("json");
    if (json == nullptr) {
        message.raw = FromBase64(members.Text("base64"));
    } else if (json->IsObject() && payloads == Payloads::Skipped) {
        message.json = Json::Value(Json::objectValue);
    } else {
        message.json = Converted(*json, 0);
    }
    return message;
}

Record RecordOf(const Members& line, Payloads payloads) {
    Record record;
    record.number = line.Count("number");
    record.kind = KindOf(line.Text("kind"));
    record.time = TimeStamp(line.Time("wall_us"), line.Time("monotonic_us"));
    record.connection = line.Count("connection");
    record.socket = line.Text("socket");
    record.family = line.Text("family");
    record.event = line.Flag("event");
    record.operation = line.Text("operation");
    record.message = MessageOf(line.Object("message"), payloads);
    if (line.Find("code") != nullptr) record.code = line.Number("code");
    if (line.Find("reply") != nullptr) record.reply = MessageOf(line.Object("reply"), payloads);
    if (line.Find("duration_us") != nullptr) record.duration = line.Time("duration_us");
    if (line.Find("status") != nullptr) record.status = line.Number("status");
    record.open = line.Flag("open");
    record.library = PeerOf(line.Object("library"));
    record.platform = PeerOf(line.Object("platform"));
    record.rule = line.Text("rule");
    record.note = line.Text("note");
    return record;
}

}  // namespace

struct RecordReader::Memory {
    char first[kMemory];
    rapidjson::MemoryPoolAllocator<> pool{first, sizeof(first)};
};

RecordReader::RecordReader(Payloads payloads) : mPayloads(payloads), mMemory(std::make_unique<Memory>()) {}

RecordReader::~RecordReader() = default;

Record RecordReader::Read(std::string_view line) {
    mMemory->pool.Clear();
    rapidjson::Document document(&mMemory->pool);
    // Iterative: a line that nests deeply must not end the program.
    document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag>(line.data(), line.size());
    if (document.HasParseError()) {
        std::string reason = rapidjson::GetParseError_En(document.GetParseError());
        if (reason.back() == '.') reason.pop_back();
        throw std::runtime_error("not valid JSON: column " + std::to_string(document.GetErrorOffset() + 1) + ": " +
                                 reason);
    }
    if (!document.IsObject()) throw std::runtime_error("it is not an object");
    const Members members(&document);
    for (const char* key : {"number", "kind", "wall_us", "monotonic_us"}) {
        if (members.Find(key) == nullptr) throw std::runtime_error("\"" + std::string(key) + "\" is missing");
    }
    return RecordOf(members, mPayloads);
}

}  // namespace hbbtv::traffic
