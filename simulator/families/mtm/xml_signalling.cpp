#include "families/mtm/xml_signalling.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLongest = 4096;

std::string WithoutBlanks(const std::string& text) {
    const size_t begin = text.find_first_not_of(" \t\r\n");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

std::string WithoutEscapes(std::string text) {
    for (size_t at = text.find("&amp;"); at != std::string::npos; at = text.find("&amp;", at + 1))
        text.erase(at + 1, 4);
    return text;
}

// Returns the text between the element's start and the next tag; empty if there is none or it is too long.
std::string TextOf(const std::string& xml, const std::string& element) {
    size_t at = xml.find('<');
    while (at != std::string::npos) {
        const size_t end = xml.find('>', at);
        const size_t next = xml.find('<', end);
        if (next == std::string::npos) break;
        std::string name = xml.substr(at + 1, xml.find_first_of(" \t\r\n/>", at + 1) - at - 1);
        name.erase(0, name.find(':') + 1);
        const size_t length = next - end - 1;
        if (name == element && length <= kLongest) return WithoutEscapes(WithoutBlanks(xml.substr(end + 1, length)));
        at = next;
    }
    return "";
}

}  // namespace

std::optional<std::string> LocationIn(const std::string& xml) {
    const std::string page = TextOf(xml, "applicationLocation");
    const std::string location = TextOf(xml, "URLBase") + page;
    if (page.empty() || location.find("://") == std::string::npos) return std::nullopt;
    return location;
}

}  // namespace hbbtv::sim
