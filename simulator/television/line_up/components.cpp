#include "television/line_up/components.h"

namespace hbbtv::sim {

namespace {

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
