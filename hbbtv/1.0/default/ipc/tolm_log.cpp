#include "ipc/tolm_log.h"

#include <cstdarg>
#include <cstdio>
#include <string>

namespace tolm {

namespace {

thread_local Place tLastPlace{"", 0, ""};

enum class LineBreaks { kEscaped, kOfDocumentsKept };

// The log itself keeps no more of a line.
constexpr size_t kMaxMessage = 1024;

// Returns the length of the valid UTF-8 character at the start of the text, or 0.
size_t CharacterLength(const char* text) {
    const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const size_t length = byte(0) < 0x80 ? 1 : byte(0) < 0xc2 ? 0 : byte(0) < 0xe0 ? 2 : byte(0) < 0xf0 ? 3 : 4;
    if (byte(0) > 0xf4) return 0;
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xc0) != 0x80) return 0;
    }
    const bool overlong = (byte(0) == 0xe0 && byte(1) < 0xa0) || (byte(0) == 0xf0 && byte(1) < 0x90);
    const bool outside = (byte(0) == 0xed && byte(1) > 0x9f) || (byte(0) == 0xf4 && byte(1) > 0x8f);
    return overlong || outside ? 0 : length;
}

bool IsControl(const char* text, size_t length) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (length == 1) return first < 0x20 || first == 0x7f;
    return first == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0;
}

// A styled document begins its lines with a tab or a brace, and what follows it in the message with a blank or a comma,
// so none can be taken for a line of the log. Any other line is in a comment of the peer.
bool IsLineBreakOfDocument(const char* text) {
    return *text == '\n' && (text[1] == '\0' || strchr("\t{} ,", text[1]) != nullptr);
}

void AppendEscaped(const char* text, size_t length, std::string& line) {
    if (*text == '\n') {
        line += "\\n";
        return;
    }
    for (size_t i = 0; i < length; ++i) {
        char escaped[5];
        snprintf(escaped, sizeof(escaped), "\\x%02x", static_cast<unsigned char>(text[i]));
        line += escaped;
    }
}

// Messages contain text of peers. It must not look like further lines, nor control a terminal that shows the log.
std::string Escaped(const char* text, LineBreaks breaks) {
    std::string line;
    while (*text != '\0') {
        const size_t length = CharacterLength(text);
        const bool kept = length > 0 && (!IsControl(text, length) || (breaks == LineBreaks::kOfDocumentsKept &&
                                                                      (*text == '\t' || IsLineBreakOfDocument(text))));
        if (kept) {
            line.append(text, length);
        } else {
            AppendEscaped(text, length > 0 ? length : 1, line);
        }
        text += length > 0 ? length : 1;
    }
    return line;
}

void Write(const Place& place, int priority, const char* tag, const char* message, LineBreaks breaks) {
    if (!LogEnabled(priority, tag)) return;
    __android_log_print(priority, tag, "[tolm](%s:%d) %s: %s", LogFileName(place.file), place.line, place.function,
                        Escaped(message, breaks).c_str());
}

void WriteFormatted(const Place& place, int priority, const char* tag, LineBreaks breaks, const char* format,
                    va_list arguments) {
    if (!LogEnabled(priority, tag)) return;
    char message[kMaxMessage];
    vsnprintf(message, sizeof(message), format, arguments);
    Write(place, priority, tag, message, breaks);
}

}  // namespace

const Place& LastPlace() {
    return tLastPlace;
}

void LogAt(const Place& place, int priority, const char* tag, const char* message) {
    Write(place, priority, tag, message, LineBreaks::kEscaped);
}

void LogFormatted(const Place& place, int priority, const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteFormatted(place, priority, tag, LineBreaks::kEscaped, format, arguments);
    va_end(arguments);
}

void LogDocuments(const Place& place, int priority, const char* tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteFormatted(place, priority, tag, LineBreaks::kOfDocumentsKept, format, arguments);
    va_end(arguments);
}

LogScope::LogScope(const char* tag, const Place& place) : mTag(tag), mPlace(place) {
    tLastPlace = place;
    LogAt(mPlace, ANDROID_LOG_VERBOSE, mTag, "ENTER");
}

LogScope::~LogScope() {
    if (mLeaves) LogAt(mPlace, ANDROID_LOG_VERBOSE, mTag, "LEAVE");
}

void LogSocketLine(int priority, const char* file, int line, const char* function, const char* format, ...) {
    char message[kMaxMessage];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    LogAt({file, line, function}, priority, "tolm_IPC", message);
    printf("tolm_IPC \"%s\"\n", Escaped(message, LineBreaks::kEscaped).c_str());
}

}  // namespace tolm
