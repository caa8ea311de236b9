#include "television/line_up/bouquets.h"
#include "core/error.h"
#include "text/lines.h"
#include "text/text.h"

#include <filesystem>
#include <optional>
#include <set>

namespace hbbtv::sim {

namespace {

// Bits of a reference's second field.
constexpr uint32_t kDirectory = 7;
constexpr uint32_t kMarker = 64;
constexpr uint32_t kNumbered = 256;
constexpr uint32_t kHidden = 512;

// The reference of a `#SERVICE` line: ten fields, the path, and the rest.
struct Entry {
    bool broadcast = false;  // not a stream played from the network
    uint32_t flags = 0;
    std::string_view path;
    std::optional<ServiceReference> service;
};

std::optional<ServiceReference> ReadService(const std::vector<std::string_view>& fields) {
    if (fields.size() < 7) return std::nullopt;
    const auto sid = ReadNumber(fields[3], 16, 0xffff);
    const auto tsid = ReadNumber(fields[4], 16, 0xffff);
    const auto onid = ReadNumber(fields[5], 16, 0xffff);
    const auto nameSpace = ReadNumber(fields[6], 16, UINT32_MAX);
    if (!sid || !tsid || !onid || !nameSpace) return std::nullopt;
    return ServiceReference{*nameSpace, static_cast<int>(*onid), static_cast<int>(*tsid), static_cast<int>(*sid)};
}

std::optional<Entry> ReadEntry(std::string_view text) {
    const auto fields = Split(text, ':');
    const auto type = ReadNumber(fields[0], 10, UINT32_MAX);
    const auto flags = fields.size() < 2 ? std::nullopt : ReadNumber(fields[1], 10, UINT32_MAX);
    if (!type || !flags) return std::nullopt;
    Entry entry;
    entry.broadcast = *type == 1;
    entry.flags = *flags;
    if (fields.size() > 10) entry.path = fields[10];
    entry.service = ReadService(fields);
    return entry;
}

// Returns the rest of a line after `#NAME`, `#SERVICE` and so on, with or without a colon; nothing for other lines.
std::optional<std::string_view> Behind(std::string_view line, std::string_view word) {
    if (!StartsWith(line, word)) return std::nullopt;
    line.remove_prefix(word.size());
    if (StartsWith(line, ":")) line.remove_prefix(1);
    return Trimmed(line);
}

// The file in `FROM BOUQUET "file"`.
std::string_view NamedFile(std::string_view path) {
    constexpr std::string_view kFrom = "FROM BOUQUET \"";
    const size_t begin = path.find(kFrom);
    if (begin == std::string_view::npos) return {};
    path.remove_prefix(begin + kFrom.size());
    return path.substr(0, path.find('"'));
}

class BouquetReader {
  public:
    BouquetReader(std::string directory, const FindService& find, const FileWarning& warn)
        : mDirectory(std::move(directory)), mFind(find), mWarn(warn) {}

    Bouquets Read() {
        for (const char* file : {"bouquets.tv", "bouquets.radio"}) {
            std::error_code error;
            if (std::filesystem::exists(mDirectory + file, error)) ReadList(mDirectory + file);
        }
        return std::move(mBouquets);
    }

  private:
    // Returns the contents of a file next to the lamedb; nothing, with a warning, if there is none.
    std::optional<std::string> TextOf(const std::string& path) const {
        std::error_code error;
        std::string reason;
        std::optional<std::string> text;
        if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error)) {
            reason = path + ": is not a regular file";
        } else {
            text = ReadIfPossible(path, reason);
        }
        if (!text) mWarn(reason + "; the bouquet is skipped");
        return text;
    }

    void ReadList(const std::string& path) {
        const auto text = TextOf(path);
        if (!text) return;
        Lines lines(*text, path, mWarn);
        while (lines.Next()) {
            const std::string_view line = Trimmed(lines.Line());
            if (const auto reference = Behind(line, "#SERVICE")) {
                ReadListed(lines, *reference);
            } else if (!line.empty() && line[0] != '#') {
                lines.Warn(Quotation(line) + " is not understood; it is skipped");
            }
        }
    }

    void ReadListed(const Lines& lines, std::string_view reference) {
        const std::string file(NamedFile(reference));
        const auto entry = ReadEntry(reference);
        if (!entry || file.empty()) return lines.Warn(Quotation(reference) + " does not name a bouquet; it is skipped");
        const std::string bouquet = "the bouquet " + Quotation(file);
        if (file.find('/') != std::string::npos) return lines.Warn(bouquet + " is in another directory; it is skipped");
        if ((entry->flags & kHidden) != 0) return lines.Warn(bouquet + " is hidden on the receiver; it is skipped");
        if (!mFiles.insert(file).second) return lines.Warn(bouquet + " is listed twice; it is skipped");
        ReadBouquet(file);
    }

    void ReadBouquet(const std::string& file) {
        const auto text = TextOf(mDirectory + file);
        if (!text) return;
        Lines lines(*text, mDirectory + file, mWarn);
        FavouriteServices list;
        list.id = ReadableText(file);
        list.name = list.id;
        std::set<const Service*> members;
        std::shared_ptr<Service> latest;
        while (lines.Next()) {
            const std::string_view line = Trimmed(lines.Line());
            if (const auto name = Behind(line, "#NAME")) {
                if (!ReadableText(*name).empty()) list.name = ReadableText(*name);
            } else if (const auto description = Behind(line, "#DESCRIPTION")) {
                if (latest && latest->name.empty()) latest->name = ReadableText(*description);
            } else if (const auto reference = Behind(line, "#SERVICE")) {
                latest = ReadMember(lines, *reference);
                if (!latest) continue;
                const bool twice = !members.insert(latest.get()).second;
                if (twice) lines.Warn(Quotation(*reference) + " is in this bouquet twice; it is skipped");
                if (!twice) list.services.push_back(latest);
                if (mPlaced.insert(latest.get()).second) mBouquets.order.push_back(latest);
            } else if (!line.empty() && line[0] != '#') {
                lines.Warn(Quotation(line) + " is not understood; it is skipped");
            }
        }
        mBouquets.lists.push_back(std::move(list));
    }

    // Returns the service of a bouquet's line; null if the line is not a service.
    std::shared_ptr<Service> ReadMember(const Lines& lines, std::string_view reference) {
        const auto skipped = [&](const char* why) {
            lines.Warn(Quotation(reference) + " " + why + "; it is skipped");
            return nullptr;
        };
        const auto entry = ReadEntry(reference);
        if (!entry) return skipped("is not a reference to a service");
        if (!entry->broadcast) return skipped("is a stream, not a broadcast service");
        if ((entry->flags & kMarker) != 0) {
            if ((entry->flags & kNumbered) != 0) mBouquets.order.push_back(nullptr);
            return nullptr;
        }
        if ((entry->flags & kDirectory) != 0) return skipped("is a list inside a bouquet");
        if (entry->flags != 0) return skipped("is an unknown kind of reference");
        if (!Trimmed(entry->path).empty()) return skipped("is a stream, not a broadcast service");
        if (!entry->service) return skipped("is not a reference to a service");
        const auto service = mFind(*entry->service);
        return service ? service : skipped("is not a service of the lamedb");
    }

    std::string mDirectory;  // with its slash
    const FindService& mFind;
    const FileWarning& mWarn;
    std::set<std::string> mFiles;
    std::set<const Service*> mPlaced;
    Bouquets mBouquets;
};

}  // namespace

Bouquets ReadBouquets(const std::string& directory, const FindService& find, const FileWarning& warn) {
    return BouquetReader(directory.empty() ? "" : directory + "/", find, warn).Read();
}

}  // namespace hbbtv::sim
