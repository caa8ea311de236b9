// Requests to components: those of services and those described by clients.
#include "family/family_setup.h"

#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

class AvComponentFamily : public ObjectFamily<Component> {
  public:
    explicit AvComponentFamily(const FamilySetup& setup);
};

AvComponentFamily::AvComponentFamily(const FamilySetup& setup)
    : ObjectFamily("av_component", setup.tv.components, "component") {
    Row("Release", &AvComponentFamily::Release);
    Get("GetComponentTag", "tag", [](const Component& c) { return c.tag; });
    Get("GetPid", "pid", [](const Component& c) { return c.pid; });
    Get("GetType", "type", [](const Component& c) { return static_cast<int>(c.type); });
    Get("GetEncoding", "encoding", [](const Component& c) { return c.encoding; });
    Get("GetEncrypted", "encrypted", [](const Component& c) { return c.encrypted; });
    Get("GetAspectRatio", "aspect_ratio", [](const Component& c) { return c.aspectRatio; });
    Get("GetLanguage", "language", [](const Component& c) { return c.language; });
    Get("GetAudioDescription", "desc", [](const Component& c) { return c.audioDescription; });
    Get("GetAudioChannelNum", "num", [](const Component& c) { return c.audioChannels; });
    Get("GetHearingImpaired", "impaired", [](const Component& c) { return c.hearingImpaired; });
    Get("GetLabel", "label", [](const Component& c) { return c.label; });
}

}  // namespace

std::unique_ptr<Family> MakeAvComponentFamily(const FamilySetup& setup) {
    return std::make_unique<AvComponentFamily>(setup);
}

}  // namespace hbbtv::sim
