#include "ipc/src/tolm_json_text.h"

#include <cstring>
#include <memory>
#include <optional>
#include <ostream>
#include <streambuf>

#include "ipc/src/tolm_json_small_numbers.h"

namespace tolm {

namespace {

// Appends to a vector.
class ByteSink : public std::streambuf {
  public:
    void WriteTo(std::vector<unsigned char>* bytes) { mBytes = bytes; }

  private:
    int_type overflow(int_type c) override {
        mBytes->push_back(static_cast<unsigned char>(c));
        return c;
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override {
        mBytes->insert(mBytes->end(), text, text + size);
        return size;
    }

    std::vector<unsigned char>* mBytes = nullptr;
};

// Creating a writer costs as much as writing a small message, so each thread keeps one.
class StyledWriter {
  public:
    StyledWriter() : mWriter(Json::StreamWriterBuilder().newStreamWriter()), mStream(&mSink) {}

    void Write(const Json::Value& document, std::vector<unsigned char>& bytes) {
        mSink.WriteTo(&bytes);
        if (document.hasComment(Json::commentBefore)) mStream << '\n';
        mWriter->write(document, &mStream);
        mStream << '\n';
    }

  private:
    const std::unique_ptr<Json::StreamWriter> mWriter;
    ByteSink mSink;
    std::ostream mStream;
};

// The memory of a long document: a value has a node in its array or object (160 bytes) and a name (32). A string exists
// in up to six copies: as jsoncpp decodes it, in the document, as it is read, in the event, as a HIDL string and in a
// transaction.
constexpr size_t kBytesPerValue = 192;
constexpr size_t kCopies = 6;

const Json::Value& Member(const Json::Value& object, const char* key) {
    const Json::Value* member = object.isObject() ? object.find(key, key + strlen(key)) : nullptr;
    return member != nullptr ? *member : Json::Value::nullSingleton();
}

std::string TextOf(const Json::Value& value) {
    return value.isConvertibleTo(Json::stringValue) ? value.asString() : std::string();
}

}  // namespace

std::vector<unsigned char> ToStyledBytes(const Json::Value& document) {
    static thread_local StyledWriter writer;
    std::vector<unsigned char> bytes;
    writer.Write(document, bytes);
    return bytes;
}

bool ParseJson(const std::vector<unsigned char>& bytes, Json::Value& document, MemoryClaim& claim) {
    static thread_local Json::Reader reader;
    if (bytes.size() > kMaxJsonBytes) return false;
    const char* begin = reinterpret_cast<const char*>(bytes.data());
    const char* end = begin + bytes.size();
    SmallNumbers small;
    const std::optional<size_t> values = CountJsonValues(begin, end, &small);
    const bool isShort = bytes.size() <= kMaxShortJsonBytes;
    // Also for a document that is refused: the end of the claim returns the memory of the message.
    if (!isShort && !claim.Take(values.value_or(0) * kBytesPerValue + bytes.size() * kCopies)) return false;
    if (!values) return false;
    if (small.IsEmpty()) return reader.parse(begin, end, document, isShort);
    const std::string replaced = small.Replaced(begin, end);
    if (!reader.parse(replaced.data(), replaced.data() + replaced.size(), document, isShort)) return false;
    small.Restore(document);
    return true;
}

bool ParseJson(const std::vector<unsigned char>& bytes, Json::Value& document) {
    MemoryClaim claim;
    return ParseJson(bytes, document, claim);
}

int ReadInt(const Json::Value& object, const char* key) {
    const Json::Value& member = Member(object, key);
    return member.isConvertibleTo(Json::intValue) ? member.asInt() : 0;
}

unsigned ReadUInt(const Json::Value& object, const char* key) {
    const Json::Value& member = Member(object, key);
    return member.isConvertibleTo(Json::uintValue) ? member.asUInt() : 0;
}

Json::Int64 ReadInt64(const Json::Value& object, const char* key) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    const Json::Value& member = Member(object, key);
    const bool convertible = member.isInt64() || member.isBool() ||
                             (member.isDouble() && member.asDouble() >= -kTwoTo63 && member.asDouble() < kTwoTo63);
    return convertible ? member.asLargestInt() : 0;
}

Json::UInt64 ReadUInt64(const Json::Value& object, const char* key) {
    constexpr double kTwoTo64 = 18446744073709551616.0;
    const Json::Value& member = Member(object, key);
    const bool convertible = member.isUInt64() || member.isBool() ||
                             (member.isDouble() && member.asDouble() >= 0 && member.asDouble() < kTwoTo64);
    return convertible ? member.asLargestUInt() : 0;
}

bool ReadBool(const Json::Value& object, const char* key) {
    const Json::Value& member = Member(object, key);
    return member.isConvertibleTo(Json::booleanValue) && member.asBool();
}

double ReadReal(const Json::Value& object, const char* key) {
    const Json::Value& member = Member(object, key);
    return member.isConvertibleTo(Json::realValue) ? member.asDouble() : 0;
}

std::string ReadText(const Json::Value& object, const char* key) {
    return TextOf(Member(object, key));
}

std::vector<std::string> ReadTexts(const Json::Value& object, const char* key) {
    std::vector<std::string> texts;
    const Json::Value& member = Member(object, key);
    if (!member.isArray()) return texts;
    for (const Json::Value& element : member) texts.push_back(TextOf(element));
    return texts;
}

}  // namespace tolm
