#include "ipc/src/tolm_json_text.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <ostream>
#include <streambuf>

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

const char* EndOfString(const char* c, const char* end) {
    for (++c; c != end && *c != '"'; ++c) {
        if (*c == '\\' && c + 1 != end) ++c;
    }
    return c;
}

bool BeginsComment(const char* c, const char* end) {
    return *c == '/' && end - c > 1 && (c[1] == '/' || c[1] == '*');
}

const char* EndOfComment(const char* c, const char* end) {
    const bool block = c[1] == '*';
    for (c += 2; c != end; ++c) {
        if (!block && (*c == '\n' || *c == '\r')) return c;
        if (block && *c == '*' && c + 1 != end && c[1] == '/') return c + 1;
    }
    return end;
}

bool ClosesAtOnce(const char* array, const char* end) {
    const char* next =
        std::find_if(array + 1, end, [](char c) { return c != ' ' && c != '\t' && c != '\r' && c != '\n'; });
    return next != end && *next == ']';
}

// Returns whether jsoncpp's reader can parse the text without reading a value that is nested too deeply. The text need
// not be valid JSON. In the innermost array, the reader reads a value if anything but the closing bracket follows, even
// a comment or the end of the text; in the innermost object, it does so after a member's name.
bool WithinDepth(const char* begin, const char* end) {
    // Almost every text has too few brackets to be too deep.
    if (std::count(begin, end, '[') + std::count(begin, end, '{') < kMaxJsonDepth) return true;
    int depth = 0;
    for (const char* c = begin; c != end; ++c) {
        if (*c == '"') {
            if (depth == kMaxJsonDepth) return false;
            c = EndOfString(c, end);
        } else if (BeginsComment(c, end)) {
            c = EndOfComment(c, end);
        } else if (*c == '[' || *c == '{') {
            if (++depth > kMaxJsonDepth) return false;
            if (depth == kMaxJsonDepth && *c == '[' && !ClosesAtOnce(c, end)) return false;
        } else if (*c == ']' || *c == '}') {
            if (--depth <= 0) return true;  // the document ends here; the rest is not read
        }
        if (c == end) return true;
    }
    return true;
}

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

bool ParseJson(const std::vector<unsigned char>& bytes, Json::Value& document) {
    static thread_local Json::Reader reader;
    if (bytes.size() > kMaxJsonBytes) return false;
    const char* text = reinterpret_cast<const char*>(bytes.data());
    return WithinDepth(text, text + bytes.size()) && reader.parse(text, text + bytes.size(), document, true);
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
