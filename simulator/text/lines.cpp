#include "text/lines.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "core/error.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

constexpr int kMostWarnings = 1000;
constexpr size_t kLongestLine = 256u << 10;

}  // namespace

Lines::Lines(std::string_view text, std::string name, FileWarning warn)
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
    throw Fatal(kFileRefused, mName + ":" + std::to_string(std::max(mNumber, 1)) + ": " + reason);
}

FewWarnings::~FewWarnings() {
    const int more = mCount - kMostWarnings;
    if (more > 0) mWarn(mName + ": there are " + std::to_string(more) + " more warnings");
}

void FewWarnings::operator()(const std::string& warning) {
    if (++mCount <= kMostWarnings) mWarn(warning);
}

std::optional<std::string> ReadIfPossible(const std::string& path, std::string& reason, size_t mostMebibytes) {
    const size_t most = mostMebibytes << 20;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        reason = path + ": cannot be opened: " + std::strerror(errno);
        return std::nullopt;
    }
    std::string text;
    char block[16384];
    while (file && text.size() <= most) {
        file.read(block, sizeof(block));
        text.append(block, static_cast<size_t>(file.gcount()));
    }
    if (file.bad()) reason = path + ": cannot be read: " + std::strerror(errno);
    if (text.size() > most) reason = path + ": is larger than " + std::to_string(mostMebibytes) + " MiB";
    return reason.empty() ? std::optional<std::string>(std::move(text)) : std::nullopt;
}

std::string ReadWhole(const std::string& path, size_t mostMebibytes) {
    std::string reason;
    auto text = ReadIfPossible(path, reason, mostMebibytes);
    if (!text) throw Fatal(kFileRefused, reason);
    return std::move(*text);
}

}  // namespace hbbtv::sim
