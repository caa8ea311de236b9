#include "television/programmes/xmltv/xmltv.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <optional>
#include <pugixml.hpp>
#include <set>

#include "core/error.h"
#include "core/journal.h"
#include "television/programmes/xmltv/xmltv_programme.h"
#include "television/programmes/xmltv/xmltv_time.h"
#include "text/lines.h"
#include "text/text.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLargestMebibytes = 256;
constexpr size_t kMostOfAService = 65535;   // event ids have 16 bits
constexpr std::time_t kUsualEnd = 60 * 60;  // of a last programme without one
constexpr std::time_t kLongestGuess = 6 * kUsualEnd;
constexpr size_t kMostNames = 5;  // in one warning

using Services = std::vector<std::shared_ptr<const Service>>;

// Places in the file, and messages about them.
class Places {
  public:
    Places(const std::string& text, std::string name, const FileWarning& warn) : mName(std::move(name)), mWarn(warn) {
        for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) mEnds.push_back(at);
    }

    std::string At(std::ptrdiff_t offset) const {
        const auto place = static_cast<size_t>(std::max<std::ptrdiff_t>(offset, 0));
        const auto line = std::lower_bound(mEnds.begin(), mEnds.end(), place) - mEnds.begin() + 1;
        return mName + ":" + std::to_string(line) + ": ";
    }

    void Warn(const pugi::xml_node& node, const std::string& what) const { mWarn(At(node.offset_debug()) + what); }
    void Warn(const std::string& what) const { mWarn(mName + ": " + what); }

    [[noreturn]] void Refuse(std::ptrdiff_t offset, const std::string& reason) const {
        throw Fatal(kFileRefused, At(offset) + reason);
    }

    const std::string& Name() const { return mName; }

  private:
    std::string mName;
    const FileWarning& mWarn;
    std::vector<size_t> mEnds;
};

// Unique event ids of one service. Used ids link to the next free one, so that finding it is not a linear search.
class EventIds {
  public:
    EventIds() { std::iota(mNext.begin(), mNext.end(), 0u); }

    // Returns this one, or the next free one. There are more ids than programmes.
    int Take(size_t id) {
        id %= mNext.size();
        while (mNext[id] != id) {
            mNext[id] = mNext[mNext[id]];
            id = mNext[id];
        }
        mNext[id] = (id + 1) % mNext.size();
        return static_cast<int>(id);
    }

  private:
    std::vector<size_t> mNext = std::vector<size_t>(kMostOfAService + 1);
};

struct Entry {
    pugi::xml_node node;
    TimeRange time;  // the end is 0 if the file has none
};

class XmltvReader {
  public:
    XmltvReader(const Places& places, const LineUp& lineUp) : mPlaces(places), mLineUp(lineUp) {}

    std::unique_ptr<ListedGuide> Read(const pugi::xml_node& tv);

  private:
    void FindServices(const pugi::xml_node& tv);
    void ReadProgramme(const pugi::xml_node& node);
    std::optional<std::time_t> Time(const pugi::xml_node& node, const char* attribute) const;
    void Arrange(std::vector<Entry>& entries) const;
    ProgrammeList Make(const std::shared_ptr<const Service>& service, const std::vector<Entry>& entries,
                       bool first) const;
    void WarnOfOthers() const;

    const Places& mPlaces;
    const LineUp& mLineUp;
    std::map<std::string, Services> mServices;           // by the channel's id in the file
    std::map<std::string, std::vector<Entry>> mEntries;  // the same
    std::set<std::string> mOthers;                       // channels that are not in the line-up
};

// By the service's programmeId; for a service without one, by the display names in the file.
void XmltvReader::FindServices(const pugi::xml_node& tv) {
    std::map<std::string, Services> byName;
    for (const auto& service : mLineUp.services) {
        if (service->programmeId.empty()) {
            byName[service->name].push_back(service);
        } else {
            mServices[service->programmeId].push_back(service);
        }
    }
    for (const pugi::xml_node& channel : tv.children("channel")) {
        const std::string id = channel.attribute("id").value();
        if (id.empty()) mPlaces.Warn(channel, "the channel has no id; it is skipped");
        for (const pugi::xml_node& name : channel.children("display-name")) {
            const auto found = byName.find(ReadableText(name.child_value()));
            if (id.empty() || found == byName.end()) continue;
            Services& services = mServices[id];
            services.insert(services.end(), found->second.begin(), found->second.end());
            byName.erase(found);
        }
    }
}

std::optional<std::time_t> XmltvReader::Time(const pugi::xml_node& node, const char* attribute) const {
    const std::string text = node.attribute(attribute).value();
    try {
        return ReadXmltvTime(text);
    } catch (const std::invalid_argument& e) {
        mPlaces.Warn(node, std::string("the ") + attribute + " " + Quotation(text) + " " + e.what() +
                               "; the programme is skipped");
        return std::nullopt;
    }
}

void XmltvReader::ReadProgramme(const pugi::xml_node& node) {
    const std::string channel = node.attribute("channel").value();
    if (mServices.count(channel) == 0) {
        if (channel.empty()) {
            mPlaces.Warn(node, "the programme has no channel; it is skipped");
        } else {
            mOthers.insert(channel);
        }
        return;
    }
    if (node.attribute("start").empty()) return mPlaces.Warn(node, "the programme has no start; it is skipped");
    if (ShownText(node, "title").empty()) return mPlaces.Warn(node, "the programme has no title; it is skipped");
    Entry entry{node, {}};
    const auto start = Time(node, "start");
    if (!start) return;
    entry.time.from = *start;
    if (!node.attribute("stop").empty()) {
        const auto stop = Time(node, "stop");
        if (!stop) return;
        if (*stop <= *start) return mPlaces.Warn(node, "the programme ends before it begins; it is skipped");
        entry.time.to = *stop;
    }
    mEntries[channel].push_back(entry);
}

// Sorted by time, without duplicates, each ending at or before the start of the next.
void XmltvReader::Arrange(std::vector<Entry>& entries) const {
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& one, const Entry& other) { return one.time.from < other.time.from; });
    std::vector<Entry> arranged;
    for (const Entry& entry : entries) {
        if (arranged.size() >= kMostOfAService) {
            mPlaces.Warn(entry.node, "the channel has more than 65535 programmes; the rest is skipped");
            break;
        }
        if (!arranged.empty()) {
            TimeRange& before = arranged.back().time;
            if (before.from == entry.time.from) {
                mPlaces.Warn(entry.node, "the channel has another programme with this start; it is skipped");
                continue;
            }
            if (before.to > entry.time.from) {
                mPlaces.Warn(arranged.back().node, "the programme overlaps the next one; it is shortened");
                before.to = entry.time.from;
            }
            if (before.to == 0) before.to = std::min(entry.time.from, before.from + kLongestGuess);
        }
        arranged.push_back(entry);
    }
    TimeRange& last = arranged.back().time;
    if (last.to == 0) last.to = last.from + kUsualEnd;
    entries = std::move(arranged);
}

// Event ids are derived from the minute of the start, so that a newer file gives a programme the same one.
ProgrammeList XmltvReader::Make(const std::shared_ptr<const Service>& service, const std::vector<Entry>& entries,
                                bool first) const {
    ProgrammeList programmes;
    EventIds ids;
    for (const Entry& entry : entries) {
        const auto programme = MakeProgramme(service, entry.time, ids.Take(static_cast<size_t>(entry.time.from / 60)));
        FillProgramme(*programme, entry.node, [&](const std::string& what) {
            if (first) mPlaces.Warn(entry.node, what);
        });
        programmes.push_back(programme);
    }
    return programmes;
}

void XmltvReader::WarnOfOthers() const {
    if (mOthers.empty()) return;
    std::string names;
    size_t count = 0;
    for (const std::string& id : mOthers) {
        if (++count > kMostNames) break;
        names += (count == 1 ? "" : ", ") + Quotation(id);
    }
    if (mOthers.size() > kMostNames) names += ", ...";
    mPlaces.Warn("channels that are not in the line-up, " + std::to_string(mOthers.size()) + ": " + names);
}

std::unique_ptr<ListedGuide> XmltvReader::Read(const pugi::xml_node& tv) {
    FindServices(tv);
    for (const pugi::xml_node& node : tv.children("programme")) ReadProgramme(node);
    WarnOfOthers();
    auto guide = std::make_unique<ListedGuide>();
    for (auto& entry : mEntries) {
        Arrange(entry.second);
        bool first = true;
        for (const auto& service : mServices[entry.first]) {
            guide->Add(*service, Make(service, entry.second, first));
            first = false;
        }
    }
    if (guide->Size() == 0)
        throw Fatal(kFileRefused, mPlaces.Name() + ": no programme belongs to a service of the line-up");
    return guide;
}

}  // namespace

std::unique_ptr<ListedGuide> ParseXmltv(std::string text, const std::string& name, const LineUp& lineUp,
                                        const FileWarning& warn) {
    FewWarnings few(name, warn);
    const FileWarning fewWarnings = std::ref(few);
    const Places places(text, name, fewWarnings);
    if (StartsWith(text, "\xff\xfe") || StartsWith(text, "\xfe\xff")) places.Refuse(0, "is UTF-16, not UTF-8");
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer_inplace(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) places.Refuse(result.offset, std::string("is not valid XML: ") + result.description());
    const pugi::xml_node tv = document.document_element();
    if (std::string(tv.name()) != "tv") {
        places.Refuse(tv.offset_debug(), "begins with <" + Excerpt(tv.name()) + ">, where XMLTV has <tv>");
    }
    return XmltvReader(places, lineUp).Read(tv);
}

std::unique_ptr<ListedGuide> ReadXmltv(const std::string& path, const LineUp& lineUp, const FileWarning& warn) {
    return ParseXmltv(ReadWhole(path, kLargestMebibytes), path, lineUp, warn);
}

}  // namespace hbbtv::sim
