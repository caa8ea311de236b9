#include "television/files/carousel_url.h"

#include "common/text/utf8.h"
#include "core/error.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

constexpr std::string_view kScheme = "dvb://";
constexpr std::string_view kCurrentAit = "current.ait";
constexpr size_t kLongestUrl = 4096;
constexpr size_t kLongestName = 255;
constexpr uint32_t kLargestId = 0xffff;
constexpr uint32_t kLargestTag = 0xff;

// Decodes a percent-encoded name.
std::string Decoded(std::string_view written) {
    std::string name;
    for (size_t i = 0; i < written.size(); ++i) {
        if (written[i] != '%') {
            name += written[i];
            continue;
        }
        const auto code = i + 2 < written.size() ? ReadNumber(written.substr(i + 1, 2), 16, 0xff) : std::nullopt;
        if (!code) throw Refused("a % in the path is not followed by two hexadecimal digits");
        name += static_cast<char>(*code);
        i += 2;
    }
    return name;
}

std::string Name(std::string_view written) {
    std::string name = Decoded(written);
    if (name.empty()) throw Refused("the path has an empty name");
    if (name == "." || name == "..") throw Refused("the path has the name \"" + name + "\"");
    if (name.size() > kLongestName) throw Refused("the path has a name of more than 255 bytes");
    for (const char c : name) {
        const bool bad = c == '/' || c == '\\' || static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
        if (bad) throw Refused("the path has a name with a slash, a backslash or a control character");
    }
    if (ValidUtf8(name) != name) throw Refused("the path is not UTF-8");
    return name;
}

uint32_t HexNumber(std::string_view word, uint32_t largest) {
    const auto number = ReadNumber(word, 16, largest);
    if (!number) throw Refused("the URL has " + Quotation(word) + " where a hexadecimal number is expected");
    return *number;
}

}  // namespace

CarouselPath ReadCarouselPath(const std::string& text) {
    CarouselPath path;
    for (const std::string_view name : Split(text, '/')) path.push_back(Name(name));
    return path;
}

CarouselUrl ReadCarouselUrl(const std::string& text) {
    if (text.size() > kLongestUrl) throw Refused("the URL is longer than 4096 bytes");
    std::string_view url = text;
    if (!StartsWith(url, kScheme)) throw Refused("the URL does not begin with dvb://");
    url = url.substr(kScheme.size(), url.find_first_of("?#") - kScheme.size());
    const size_t slash = url.find('/');
    if (slash == std::string_view::npos) throw Refused("the URL does not name a file");
    const std::string_view place = url.substr(0, slash);
    const std::string_view rest = url.substr(slash + 1);
    CarouselUrl read;
    if (place == kCurrentAit) {
        read.application = ReadApplicationId(std::string(rest));
        if (!read.application) throw Refused("the URL does not name an application: dvb://current.ait/13.1f5");
        return read;
    }
    const auto words = Split(place, '.');
    if (words.size() != 4) throw Refused("the URL does not name a carousel: dvb://onid.tsid.sid.component/path");
    read.onid = static_cast<int>(HexNumber(words[0], kLargestId));
    read.tsid = static_cast<int>(HexNumber(words[1], kLargestId));
    read.sid = static_cast<int>(HexNumber(words[2], kLargestId));
    read.componentTag = static_cast<int>(HexNumber(words[3], kLargestTag));
    read.path = ReadCarouselPath(std::string(rest));
    return read;
}

std::string PathText(const CarouselPath& path) {
    std::string text;
    for (const std::string& name : path) text += (text.empty() ? "" : "/") + name;
    return text;
}

}  // namespace hbbtv::sim
