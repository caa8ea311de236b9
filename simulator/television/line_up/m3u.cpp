// M3U playlists to services over IP. A playlist has names, numbers, logos and groups; other values are those of the
// table in docs/simulator.md.
#include <algorithm>
#include <map>

#include "television/line_up/components.h"
#include "television/line_up/formats.h"
#include "text/lines.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

constexpr uint32_t kLargestNumber = 9999;

// The lines before a URI.
struct Entry {
    int line = 0;
    std::string name;
    std::map<std::string, std::string, std::less<>> attributes;
    std::string group;

    std::string Attribute(const char* key) const {
        const auto found = attributes.find(key);
        return found == attributes.end() ? "" : found->second;
    }
};

// A scheme of two letters or more (one is a drive letter), a colon, and at least one more character, all of them
// printable.
bool IsUri(std::string_view text) {
    const size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon < 2 || colon + 1 == text.size()) return false;
    const std::string_view scheme = text.substr(0, colon);
    const char* const letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-.";
    const bool letterFirst = std::string_view(letters, 52).find(scheme[0]) != std::string_view::npos;
    return letterFirst && scheme.find_first_not_of(letters) == std::string_view::npos && ReadableText(text) == text;
}

// Reads the value at `at`, in quotes or up to the next space or comma, and moves `at` after it. Returns false for an
// unclosed quote.
bool ReadValue(std::string_view text, size_t& at, std::string& value) {
    const bool quoted = at < text.size() && text[at] == '"';
    const size_t begin = quoted ? at + 1 : at;
    const size_t end = quoted ? text.find('"', begin) : std::min(text.find_first_of(" \t,", begin), text.size());
    if (end == std::string_view::npos) return false;
    value = ReadableText(text.substr(begin, end - begin));
    at = quoted ? end + 1 : end;
    return true;
}

// Reads `-1 tvg-id="a" radio=true`, up to the comma before the name. Returns the position of the comma, or npos if
// there is none.
size_t ReadAttributes(std::string_view text, Entry& entry) {
    size_t at = text.find_first_of(" \t,");
    while ((at = text.find_first_not_of(" \t", at)) != std::string_view::npos) {
        if (text[at] == ',') return at;
        const size_t end = text.find_first_of("= \t,", at);
        if (end == std::string_view::npos) return end;
        const std::string key(text.substr(at, end - at));
        at = end;
        if (text[end] == '=' && !ReadValue(text, ++at, entry.attributes[key])) return std::string_view::npos;
    }
    return at;
}

class M3uReader {
  public:
    M3uReader(const std::string& text, const std::string& name, const FileWarning& warn) : mLines(text, name, warn) {
        mNetwork->id = "iptv";
        mNetwork->name = "IPTV";
        mNetwork->delivery = IdType::IptvUri;
    }

    LineUp Read() {
        while (mLines.Next()) ReadLine(Trimmed(mLines.Line()));
        DropEntry();
        if (mLineUp.services.empty()) mLines.Refuse("the playlist has no service");
        return std::move(mLineUp);
    }

  private:
    void ReadLine(std::string_view line) {
        if (line.empty()) return;
        if (line[0] != '#') return AddService(line);
        // The segments and variants of one stream, not a list of streams.
        for (const char* directive : {"#EXT-X-TARGETDURATION", "#EXT-X-STREAM-INF"}) {
            if (StartsWith(line, directive)) mLines.Refuse("the playlist is a stream, not a list of services");
        }
        if (StartsWith(line, "#EXTINF:")) BeginEntry(line.substr(8));
        if (StartsWith(line, "#EXTGRP:")) mEntry.group = ReadableText(line.substr(8));
        if (StartsWith(line, "#PLAYLIST:") && !ReadableText(line.substr(10)).empty()) {
            mNetwork->name = ReadableText(line.substr(10));
        }
    }

    void BeginEntry(std::string_view text) {
        DropEntry();
        mEntry.line = mLines.Number();
        size_t comma = ReadAttributes(text, mEntry);
        if (comma == std::string_view::npos && (comma = text.rfind(',')) != std::string_view::npos) {
            mLines.Warn("the attributes cannot be read; the name is what follows the last comma");
        }
        if (comma != std::string_view::npos) mEntry.name = ReadableText(text.substr(comma + 1));
    }

    void DropEntry() {
        if (mEntry.line == 0) return;
        mLines.Warn(mEntry.line, Quotation(mEntry.name) + " has no URI; it is skipped");
        mEntry = Entry();
    }

    void AddService(std::string_view uri) {
        const Entry entry = std::move(mEntry);
        mEntry = Entry();
        if (!IsUri(uri)) return mLines.Warn(Quotation(uri) + " is not a URI; the service is skipped");
        const auto known = mLineOfUri.emplace(uri, mLines.Number());
        if (!known.second) {
            return mLines.Warn("the URI is that of line " + std::to_string(known.first->second) +
                               "; the service is skipped");
        }
        const auto service = std::make_shared<Service>();
        service->uri = std::string(uri);
        service->network = mNetwork;
        Describe(entry, *service);
        service->number = NumberOf(entry);
        mLineUp.services.push_back(service);
    }

    void Describe(const Entry& entry, Service& service) const {
        service.programmeId = entry.Attribute("tvg-id");
        service.logoUrl = entry.Attribute("tvg-logo");
        for (const std::string& name : {entry.name, entry.Attribute("tvg-name"), service.programmeId, service.uri}) {
            if (service.name.empty()) service.name = name;
        }
        const std::string groups = entry.Attribute("group-title");
        for (const std::string_view group : Split(groups.empty() ? entry.group : groups, ';')) {
            if (!Trimmed(group).empty()) service.genres.emplace_back(Trimmed(group));
        }
        const std::string radio = entry.Attribute("radio");
        service.type = radio == "true" || radio == "1" ? ChannelType::Radio : ChannelType::Tv;
        service.highDefinition = service.type == ChannelType::Tv;
        if (service.type == ChannelType::Tv) AddPicture(service, "AVC_HD_25", 0);
        AddSound(service, "HEAAC", 0);
    }

    // Numbers rise, so that zapping follows the numbers.
    int NumberOf(const Entry& entry) {
        const std::string wanted = entry.Attribute("tvg-chno");
        const int number = static_cast<int>(ReadNumber(wanted, 10, kLargestNumber).value_or(0));
        if (!wanted.empty() && number <= mLastNumber) {
            mLines.Warn(entry.line, "the number " + Quotation(wanted) + " is not a whole number above " +
                                        std::to_string(mLastNumber) + " and up to " + std::to_string(kLargestNumber) +
                                        "; the service gets " + std::to_string(mLastNumber + 1));
        }
        mLastNumber = std::max(number, mLastNumber + 1);
        return mLastNumber;
    }

    Lines mLines;
    std::shared_ptr<Network> mNetwork = std::make_shared<Network>();
    Entry mEntry;  // its line is 0 before an #EXTINF
    std::map<std::string, int, std::less<>> mLineOfUri;
    LineUp mLineUp;
    int mLastNumber = 0;
};

}  // namespace

LineUp ParseM3u(const std::string& text, const std::string& name, const FileWarning& warn) {
    return M3uReader(text, name, warn).Read();
}

}  // namespace hbbtv::sim
