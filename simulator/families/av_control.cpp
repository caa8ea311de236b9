// The media object of the browser: the components that it reports, and the viewer's selections.
#include "family/family_setup.h"

#include <array>
#include <optional>
#include <sstream>

#include "core/error.h"
#include "core/journal.h"
#include "family/members.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kMostComponents = 1000;  // of a type
const std::array<const char*, 3> kTypes{"video", "audio", "subtitle"};

// One component of the browser's media, as reported by the browser.
struct MediaComponent {
    bool active = false;
    Component component;
};

struct MediaComponents {
    std::vector<MediaComponent> list;
    int current = 0;  // as reported; negative or 0 if there is none
};

MediaComponent ReadComponent(const Arguments& in) {
    MediaComponent read;
    read.active = in.Bool("actived");
    read.component.type = ReadComponentType(in.Int("comp_type"));
    read.component.encoding = in.ShortText("encoding");
    read.component.language = in.ShortText("language");
    read.component.audioChannels = static_cast<int>(in.UInt("audio_channelNum"));
    read.component.hearingImpaired = in.Bool("impaired");
    read.component.audioDescription = in.Bool("desc");
    read.component.tag = in.Int("compTag");
    return read;
}

std::string Described(const MediaComponent& media) {
    const Component& component = media.component;
    std::ostringstream text;
    text << "tag " << component.tag;
    if (!component.encoding.empty()) text << " " << Excerpt(component.encoding);
    if (!component.language.empty()) text << " " << Excerpt(component.language);
    if (component.type == ComponentType::Audio) text << " " << component.audioChannels << " channels";
    if (component.audioDescription) text << " audio description";
    if (component.hearingImpaired) text << " hearing impaired";
    if (media.active) text << " active";
    return text.str();
}

class AvControlFamily : public Family {
  public:
    explicit AvControlFamily(const FamilySetup& setup);

  private:
    void ComponentUpdate(In in, Out);

    // At the television.
    std::string Components(const Words& words);
    std::string Select(const Words& words);

    EventSink& mSink;
    std::array<std::optional<MediaComponents>, 3> mComponents;  // by type; nothing until the browser has reported it
};

AvControlFamily::AvControlFamily(const FamilySetup& setup)
    : Family("av_control"), mSink(Sends(setup.makeSink, {"select"})) {
    using F = AvControlFamily;
    Row("ComponentUpdate", &F::ComponentUpdate);
    AddCommand("components", "show the components of the browser's media", &F::Components);
    AddCommand("select video|audio|subtitle INDEX", "select a component of the browser's media", &F::Select);
}

// An update has all components of its type, so it replaces the previous one.
void AvControlFamily::ComponentUpdate(In in, Out) {
    const ComponentType type = ReadComponentType(in.Int("component_type"));
    const unsigned count = in.UInt("component_count");
    const Json::Value& items = in.Objects("components");
    if (count != items.size()) {
        throw Refused("\"component_count\" is " + std::to_string(count) + ", and there are " +
                      std::to_string(items.size()) + " components");
    }
    if (count > kMostComponents)
        throw Refused("there are more than " + std::to_string(kMostComponents) + " components");
    MediaComponents components;
    components.current = in.Int("current_component_index");
    for (const Json::Value& item : items) components.list.push_back(ReadComponent(Arguments(item)));
    const bool outside = components.current >= 0 && static_cast<size_t>(components.current) >= components.list.size();
    if (outside && !components.list.empty()) {
        throw Refused("index " + std::to_string(components.current) + " of " + std::to_string(components.list.size()));
    }
    mComponents[static_cast<size_t>(type)] = std::move(components);
}

std::string AvControlFamily::Components(const Words& words) {
    RequireNone(words);
    std::string text;
    for (size_t type = 0; type < kTypes.size(); ++type) {
        if (!mComponents[type]) continue;
        const MediaComponents& components = *mComponents[type];
        if (components.list.empty()) text += std::string(text.empty() ? "" : "; ") + kTypes[type] + ": none";
        for (size_t i = 0; i < components.list.size(); ++i) {
            text += std::string(text.empty() ? "" : "; ") + kTypes[type] + " " + std::to_string(i) + ": ";
            text += Described(components.list[i]);
            if (components.current == static_cast<int>(i)) text += " current";
        }
    }
    if (text.empty()) throw Refused("the browser has not reported any components");
    return text;
}

// The browser's next update has the result.
std::string AvControlFamily::Select(const Words& words) {
    const auto index = words.size() == 2 ? Number(words[1]) : std::nullopt;
    size_t type = 0;
    while (index && type < kTypes.size() && words[0] != kTypes[type]) ++type;
    if (!index || type == kTypes.size()) throw WrongWords();
    if (!mComponents[type])
        throw Refused(std::string("the browser has not reported any ") + kTypes[type] + " components");
    const MediaComponent& media = At(mComponents[type]->list, *index);
    Json::Value event;
    event["component_type"] = static_cast<int>(type);
    event["component_index"] = *index;
    mSink.Send("select", event);
    return Described(media);
}

}  // namespace

std::unique_ptr<Family> MakeAvControlFamily(const FamilySetup& setup) {
    return std::make_unique<AvControlFamily>(setup);
}

}  // namespace hbbtv::sim
