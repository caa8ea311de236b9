#include "families/video_broadcast/component_selection.h"

namespace hbbtv::sim {

namespace {

// Negative, zero and empty values of a description match anything; if it has a tag, only the tag counts.
bool Fits(const Component& wanted, const Component& candidate) {
    if (wanted.type != candidate.type) return false;
    if (wanted.tag >= 0) return wanted.tag == candidate.tag;
    return (wanted.encoding.empty() || wanted.encoding == candidate.encoding) &&
           (wanted.language.empty() || wanted.language == candidate.language) &&
           (wanted.audioChannels <= 0 || wanted.audioChannels == candidate.audioChannels) &&
           (wanted.aspectRatio <= 0 || wanted.aspectRatio == candidate.aspectRatio) &&
           wanted.audioDescription == candidate.audioDescription;
}

// With audio description, or for the hearing impaired.
bool IsAid(const Component& component) {
    return component.audioDescription || component.hearingImpaired;
}

bool IsPlain(const Component& component) {
    return !IsAid(component);
}

using Condition = bool (*)(const Component&);

// Returns the component whose language is first in the list, comma-separated ISO 639-2; *** is any.
std::shared_ptr<Component> FirstIn(const std::string& languages, Condition fits, const ComponentList& components) {
    for (size_t at = 0; at < languages.size(); at += 4) {
        const std::string language = languages.substr(at, 3);
        for (const auto& component : components) {
            if ((language == "***" || language == component->language) && fits(*component)) return component;
        }
    }
    return nullptr;
}

}  // namespace

void ComponentSelection::Start(std::shared_ptr<const Service> service) {
    mService = std::move(service);
    const bool subtitles = mPreferences.Get(Preference::Subtitles).asBool();
    mActive = {Usual(ComponentType::Video), Usual(ComponentType::Audio),
               subtitles ? Usual(ComponentType::Subtitle) : nullptr};
}

void ComponentSelection::Clear() {
    mService.reset();
    mActive = {};
}

ComponentList ComponentSelection::All() const {
    return mService ? mService->components : ComponentList();
}

ComponentList ComponentSelection::All(ComponentType type) const {
    ComponentList found;
    for (const auto& component : All()) {
        if (component->type == type) found.push_back(component);
    }
    return found;
}

ComponentList ComponentSelection::Active() const {
    ComponentList found;
    for (const auto& component : mActive) {
        if (component) found.push_back(component);
    }
    return found;
}

ComponentList ComponentSelection::Active(ComponentType type) const {
    const auto& component = mActive[static_cast<size_t>(type)];
    return component ? ComponentList{component} : ComponentList();
}

std::shared_ptr<Component> ComponentSelection::Resolve(const std::shared_ptr<Component>& wanted) const {
    const ComponentList all = All();
    for (const auto& component : all) {
        if (component == wanted) return component;
    }
    if (!wanted->description) return nullptr;
    for (const auto& component : all) {
        if (Fits(*wanted, *component)) return component;
    }
    return nullptr;
}

std::shared_ptr<Component> ComponentSelection::Usual(ComponentType type) const {
    const ComponentList all = All(type);
    const bool sound = type == ComponentType::Audio;
    const std::string languages =
        mPreferences.Get(sound ? Preference::AudioLanguage : Preference::SubtitleLanguage).asString();
    const bool aided = mPreferences.Get(sound ? Preference::AudioDescription : Preference::HearingImpaired).asBool();
    auto chosen = aided ? FirstIn(languages, IsAid, all) : nullptr;
    if (!chosen) chosen = FirstIn(languages, IsPlain, all);
    if (!chosen && !sound) chosen = FirstIn(languages, IsAid, all);  // better than another language
    if (!chosen) chosen = FirstIn("***", IsPlain, all);
    if (!chosen && (aided || !sound)) chosen = FirstIn("***", IsAid, all);
    return chosen;
}

bool ComponentSelection::Select(const std::shared_ptr<Component>& component) {
    auto& active = mActive[static_cast<size_t>(component->type)];
    if (active == component) return false;
    active = component;
    return true;
}

bool ComponentSelection::Unselect(ComponentType type) {
    auto& active = mActive[static_cast<size_t>(type)];
    if (!active) return false;
    active.reset();
    return true;
}

}  // namespace hbbtv::sim
