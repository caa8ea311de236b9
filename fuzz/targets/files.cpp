// Any text as a file that people write for the simulator, or that applications name. The first line is its kind, the
// rest its content. Whatever is accepted, the rest of the simulator can use.
#include <filesystem>
#include <fstream>
#include <map>

#include "core/error.h"
#include "families/mtm/xml_signalling.h"
#include "families/video_broadcast/stream_event_script.h"
#include "input.h"
#include "json_mutation.h"
#include "television/files/carousel.h"
#include "television/line_up/bouquets.h"
#include "television/line_up/formats.h"
#include "television/programmes/si/si_descriptors.h"
#include "television/programmes/xmltv/xmltv.h"
#include "television/tv.h"

namespace hbbtv::fuzz {

namespace {

using namespace sim;

const FileWarning kIgnore = [](const std::string& warning) { FUZZ_CHECK(!warning.empty()); };

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
}

std::string Folder(const char* name) {
    const std::string path = ScratchDirectory() + "/" + name;
    std::filesystem::create_directories(path);
    return path;
}

void ReadLineUpText(const std::string& text) {
    LineUp lineUp = ParseAnyLineUp(text, ScratchDirectory() + "/lamedb", kIgnore);
    FUZZ_CHECK(lineUp.First() != nullptr);
    const StateStore state("");
    const Tv tv(std::move(lineUp), 1, state);
    FUZZ_CHECK(tv.tuner.On() != nullptr);
}

void ReadBouquet(const std::string& text) {
    static const std::string directory = Folder("bouquets");
    WriteFile(directory + "/bouquets.tv",
              "#NAME B\n#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.tv\" "
              "ORDER BY bouquet\n");
    WriteFile(directory + "/userbouquet.a.tv", text);
    const auto service = std::make_shared<sim::Service>();
    const Bouquets bouquets = ReadBouquets(
        directory, [&](const ServiceReference& reference) { return reference.sid % 2 == 0 ? nullptr : service; },
        kIgnore);
    for (const FavouriteServices& list : bouquets.lists) {
        for (const auto& listed : list.services) FUZZ_CHECK(listed != nullptr);
    }
}

// Programmes of a service are sorted and do not overlap, and each fits into service information.
void ReadGuide(const std::string& text) {
    static const LineUp lineUp = ParseLineUp(
        R"({"networks": [{"id": "s", "name": "S", "delivery": "DVB_S", "nid": 1}], "services": [{"name": "One",
            "network": "s", "onid": 1, "tsid": 1, "sid": 1, "type": "TV", "number": 1, "components": [{"type": "video", "tag": 1, "pid": 1, "encoding": "AVC_HD_25"}]}]})",
        "line-up");
    const std::unique_ptr<ListedGuide> guide = ParseXmltv(text, "guide", lineUp, kIgnore);
    std::time_t last = std::numeric_limits<std::time_t>::min();
    guide->Walk(lineUp.First(), guide->Known(0), [&](const std::shared_ptr<Programme>& programme) {
        FUZZ_CHECK(programme->start >= last);
        last = programme->start;
        for (const std::string& descriptor : DescriptorsOf(*programme)) {
            FUZZ_CHECK(descriptor.size() <= kLongestDescriptor);
        }
        return true;
    });
}

void ReadCarousel(const std::string& text) {
    static const std::string directory = Folder("carousel");
    WriteFile(directory + "/carousel.json", text);
    Carousel carousel(directory);
    for (const auto& [path, file] : carousel.Described()) {
        FUZZ_CHECK(ReadCarouselPath(PathText(path)) == path);
        FUZZ_CHECK(carousel.About(path).version == file.version);
        FUZZ_CHECK(carousel.NextVersion(path) <= 255);
    }
}

void ReadUrl(const std::string& text) {
    for (const std::string& name : ReadCarouselUrl(text).path) {
        FUZZ_CHECK(!name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos);
        FUZZ_CHECK(name.find('\0') == std::string::npos);
    }
}

void ReadScript(const std::string& text) {
    for (const ScriptedStreamEvent& event : ParseStreamEventScript(text, "script")) {
        FUZZ_CHECK(event.time.count() >= 0 && event.data.size() % 2 == 0);
    }
}

void ReadSignalling(const std::string& text) {
    const auto location = LocationIn(text);
    FUZZ_CHECK(!location || location->find("://") != std::string::npos);
}

const std::map<std::string, void (*)(const std::string&)> kReaders{
    {"line-up", ReadLineUpText},       {"bouquet", ReadBouquet},  {"xmltv", ReadGuide},
    {"carousel", ReadCarousel},        {"carousel-url", ReadUrl}, {"stream-events", ReadScript},
    {"xml-signalling", ReadSignalling}};

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const Addressed input = Split(data, size);
    const auto reader = kReaders.find(input.line);
    if (reader == kReaders.end()) return -1;
    try {
        reader->second(input.rest);
    } catch (const hbbtv::sim::Fatal& e) {
        FUZZ_CHECK(e.Code() == hbbtv::sim::kFileRefused && *e.what() != '\0');
    } catch (const hbbtv::sim::Refused& e) {
        FUZZ_CHECK(*e.what() != '\0');
    }
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t mostBytes, unsigned seed) {
    using namespace hbbtv::fuzz;
    Random random(seed);
    const Addressed input = Split(data, size);
    const size_t room = std::max(mostBytes, input.line.size() + 1) - input.line.size() - 1;
    return Store(input.line + "\n" + MutatedJson(input.rest, room, random), data, mostBytes);
}
