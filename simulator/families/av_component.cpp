// Requests to components: those of services and those that clients describe.
#include "family/family_setup.h"

#include "family/object_family.h"

namespace hbbtv::sim {

namespace {

class AvComponentFamily : public ObjectFamily<Component> {
  public:
    explicit AvComponentFamily(const FamilySetup& setup);
};

AvComponentFamily::AvComponentFamily(const FamilySetup& setup)
    : ObjectFamily({"av_component", "service_plugin_to_hbbtv_av_com", "", 14, "method", 11}, setup.tv.components,
                   "handle", "component") {
    Row(0, "Release", &AvComponentFamily::Release);
    Get(1, "GetComponentTag", "tag", [](const Component& c) { return c.tag; });
    Get(2, "GetPid", "pid", [](const Component& c) { return c.pid; });
    Get(3, "GetType", "type", [](const Component& c) { return static_cast<int>(c.type); });
    Get(4, "GetEncoding", "encoding", [](const Component& c) { return c.encoding; });
    Get(5, "GetEncrypted", "encrypted", [](const Component& c) { return c.encrypted; });
    Get(6, "GetAspectRatio", "aspect_ratio", [](const Component& c) { return c.aspectRatio; });
    Get(7, "GetLanguage", "language", [](const Component& c) { return c.language; });
    Get(8, "GetAudioDescription", "desc", [](const Component& c) { return c.audioDescription; });
    Get(9, "GetAudioChannelNum", "num", [](const Component& c) { return c.audioChannels; });
    Get(10, "GetHearingImpaired", "impaired", [](const Component& c) { return c.hearingImpaired; });
    Get(11, "GetLabel", "label", [](const Component& c) { return c.label; });
}

}  // namespace

std::unique_ptr<Family> MakeAvComponentFamily(const FamilySetup& setup) {
    return std::make_unique<AvComponentFamily>(setup);
}

}  // namespace hbbtv::sim
