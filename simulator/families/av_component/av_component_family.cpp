// Requests of the AV component family: see av_component_family.h.
#include "families/av_component/av_component_family.h"

#include "families/members.h"

namespace hbbtv::sim {

namespace {

class AvComponentFamily : public Family {
  public:
    explicit AvComponentFamily(const FamilySetup& setup);

  private:
    using In = const Arguments&;
    using Out = Json::Value&;

    // A row that reads the component into one member of the reply.
    template <typename Read>
    void Get(int code, const char* name, const char* member, Read read) {
        Row(code, name, [this, member, read](In in, Out out) {
            out[member] = read(*Find(mTv.components, in, "handle", "component"));
        });
    }

    Tv& mTv;
};

AvComponentFamily::AvComponentFamily(const FamilySetup& setup)
    : Family({"av_component", "service_plugin_to_hbbtv_av_com", "", 14, "method", 11}), mTv(setup.tv) {
    Row(0, "Release", [this](In in, Out) { Remove(mTv.components, in, "handle", "component"); });
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
