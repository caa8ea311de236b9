// Lines, words and text of line-up files: see line_up_text.h.
#include "platform/line_up_text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>

#include "core/journal.h"
#include "platform/utf8.h"

namespace hbbtv::sim {

namespace {

constexpr int kMostWarnings = 1000;
constexpr size_t kLongestLine = 256u << 10;
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";

// C0 and C1, and the place in the private use area where DVB's two-byte tables have their own C1.
bool IsControl(uint32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || (code >= 0xe080 && code < 0xe0a0);
}

Component& Add(Service& service, ComponentType type, const std::string& encoding, int pid) {
    const auto component = std::make_shared<Component>();
    component->type = type;
    component->tag = static_cast<int>(service.components.size()) + 1;
    component->pid = pid;
    component->encoding = encoding;
    component->encrypted = service.access == Access::Scrambled && type != ComponentType::Subtitle;
    service.components.push_back(component);
    return *component;
}

}  // namespace

Lines::Lines(std::string_view text, std::string name, LineUpWarning warn)
    : mText(WithoutByteOrderMark(text)), mName(std::move(name)), mWarn(std::move(warn)) {}

std::string_view Lines::Cut(size_t& at) const {
    const size_t end = std::min(mText.find('\n', at), mText.size());
    std::string_view line = mText.substr(at, end - at);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    at = end + 1;
    return line;
}

bool Lines::Next() {
    if (mNext >= mText.size()) return false;
    mLine = Cut(mNext);
    ++mNumber;
    if (mLine.size() > kLongestLine) {
        Warn("the line is longer than " + std::to_string(kLongestLine) + " bytes; it is skipped");
        mLine = {};
    }
    return true;
}

std::string_view Lines::Ahead(int count) const {
    std::string_view line;
    size_t at = mNext;
    for (int i = 0; i < count; ++i) line = at < mText.size() ? Cut(at) : std::string_view();
    return line.size() > kLongestLine ? std::string_view() : line;
}

void Lines::Warn(int number, const std::string& what) const {
    mWarn(mName + ":" + std::to_string(number) + ": " + what);
}

void Lines::Refuse(const std::string& reason) const {
    throw BadLineUp(mName + ":" + std::to_string(std::max(mNumber, 1)) + ": " + reason);
}

FewWarnings::~FewWarnings() {
    const int more = mCount - kMostWarnings;
    if (more > 0) mWarn(mName + ": there are " + std::to_string(more) + " more warnings");
}

void FewWarnings::operator()(const std::string& warning) {
    if (++mCount <= kMostWarnings) mWarn(warning);
}

std::string ReadWhole(const std::string& path, size_t mostMebibytes) {
    const size_t most = mostMebibytes << 20;
    std::ifstream file(path, std::ios::binary);
    if (!file) throw BadLineUp(path + ": cannot be opened: " + std::strerror(errno));
    std::string text;
    char block[16384];
    while (file && text.size() <= most) {
        file.read(block, sizeof(block));
        text.append(block, static_cast<size_t>(file.gcount()));
    }
    if (file.bad()) throw BadLineUp(path + ": cannot be read: " + std::strerror(errno));
    if (text.size() > most) throw BadLineUp(path + ": is larger than " + std::to_string(mostMebibytes) + " MiB");
    return text;
}

bool StartsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

std::string_view WithoutByteOrderMark(std::string_view text) {
    if (StartsWith(text, kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    return text;
}

std::string_view Trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> words;
    while (true) {
        const size_t end = text.find(separator);
        words.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return words;
        text.remove_prefix(end + 1);
    }
}

std::optional<uint32_t> ReadNumber(std::string_view word, int base, uint32_t largest) {
    uint32_t number = 0;
    const char* const end = word.data() + word.size();
    const auto read = std::from_chars(word.data(), end, number, base);
    if (word.empty() || read.ec != std::errc() || read.ptr != end || number > largest) return std::nullopt;
    return number;
}

std::string ReadableText(std::string_view raw) {
    std::string text;
    while (!raw.empty()) {
        uint32_t code = 0;
        const size_t length = Utf8Length(raw, code);
        if (length == 0) {
            code = static_cast<unsigned char>(raw[0]);
            if (!IsControl(code))
                text += {static_cast<char>(0xc0 | code >> 6), static_cast<char>(0x80 | (code & 0x3f))};
        } else if (code == '\t') {
            text += ' ';
        } else if (!IsControl(code)) {
            text += raw.substr(0, length);
        }
        raw.remove_prefix(std::max<size_t>(length, 1));
    }
    return std::string(Trimmed(text));
}

std::string_view StartOf(std::string_view text, size_t room) {
    if (text.size() <= room) return text;
    size_t end = room;
    for (int back = 0; back < 3 && end > 0 && IsContinuation(text[end]); ++back) --end;
    return text.substr(0, end);
}

std::string Quotation(std::string_view text) {
    return "\"" + Excerpt(std::string(text)) + "\"";
}

void AddPicture(Service& service, const std::string& encoding, int pid) {
    Add(service, ComponentType::Video, encoding, pid).aspectRatio = 1.78;
}

void AddSound(Service& service, const std::string& encoding, int pid) {
    Component& sound = Add(service, ComponentType::Audio, encoding, pid);
    sound.language = "und";
    sound.audioChannels = 2;
}

void AddSubtitle(Service& service, const std::string& encoding, int pid) {
    Add(service, ComponentType::Subtitle, encoding, pid).language = "und";
}

}  // namespace hbbtv::sim
