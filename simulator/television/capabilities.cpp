#include "television/capabilities.h"

#include <algorithm>
#include <map>

namespace hbbtv::sim {

namespace {

// The position is the number of a capability in requests.
const char* const kNumbered[] = {
    "OITF_HD_UIPROF", "META_SI", "META_EIT", "TRICKMODE", "RTSP",   "AVCAD",  "DRM",      "PVR",
    "DVB_C",          "DVB_S",   "DVB_T",    "DVB_C2",    "DVB_S2", "DVB_T2", "IPTV_SDS", "IPTV_URI"};

const std::map<IdType, const char*> kDeliveries{
    {IdType::DvbC, "DVB_C"},   {IdType::DvbS, "DVB_S"},   {IdType::DvbT, "DVB_T"},       {IdType::DvbC2, "DVB_C2"},
    {IdType::DvbS2, "DVB_S2"}, {IdType::DvbT2, "DVB_T2"}, {IdType::IptvSds, "IPTV_SDS"}, {IdType::IptvUri, "IPTV_URI"}};

const char* const kDrmSystem = "urn:dvb:casystemid:19188";

struct MediaProfile {
    const char* element;
    const char* name;
    const char* type;
};

// The formats that every HbbTV terminal has (ETSI TS 102 796).
const MediaProfile kMedia[] = {
    {"audio_profile", "MPEG1_L3", "audio/mpeg"},           {"audio_profile", "HEAAC", "audio/mp4"},
    {"video_profile", "TS_AVC_SD_25_HEAAC", "video/mpeg"}, {"video_profile", "TS_AVC_HD_25_HEAAC", "video/mpeg"},
    {"video_profile", "MP4_AVC_SD_25_HEAAC", "video/mp4"}, {"video_profile", "MP4_AVC_HD_25_HEAAC", "video/mp4"}};

constexpr unsigned kDecoders = 2;
constexpr unsigned kHighDefinitionDecoders = 1;  // of these

std::string Escaped(const std::string& text) {
    static const std::map<char, const char*> entities{{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};
    std::string escaped;
    for (const char c : text) {
        const auto entity = entities.find(c);
        entity == entities.end() ? escaped += c : escaped += entity->second;
    }
    return escaped;
}

std::string Attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + Escaped(value) + "\"";
}

std::vector<std::string> Broadcasts(const LineUp& lineUp) {
    std::vector<std::string> names;
    for (const auto& [type, name] : kDeliveries) {
        const bool received = std::any_of(lineUp.services.begin(), lineUp.services.end(),
                                          [type = type](const auto& s) { return s->network->delivery == type; });
        if (received) names.push_back(name);
    }
    return names;
}

bool ShowsVideo(const Service& service) {
    const auto& all = service.components;
    return std::any_of(all.begin(), all.end(), [](const auto& c) { return c->type == ComponentType::Video; });
}

}  // namespace

Capabilities::Capabilities(const Tv& tv)
    : mTv(tv),
      mFragments{"OITF_HD_UIPROF", "META_SI", "META_EIT", "TRICKMODE", "RTSP", "AVCAD", "DRM"},
      mBroadcasts(Broadcasts(tv.lineUp)) {
    if (tv.device.Description().pvr) mFragments.push_back("PVR");
    mFragments.insert(mFragments.end(), mBroadcasts.begin(), mBroadcasts.end());
}

std::string Capabilities::Profile() const {
    std::string profile;
    for (const std::string& fragment : mFragments) profile += (profile.empty() ? "" : "+") + fragment;
    return profile;
}

std::string Capabilities::Extensions() const {
    std::string text = "      <colorkeys>true</colorkeys>\n";
    for (const std::string& name : mBroadcasts) {
        text += "      <video_broadcast" + Attribute("type", "ID_" + name) + Attribute("scaling", "arbitrary") +
                Attribute("minSize", "0") + ">true</video_broadcast>\n";
    }
    std::string schemes;
    for (const auto& scheme : mTv.parentalControl.Schemes()) schemes += (schemes.empty() ? "" : " ") + scheme->name;
    text += "      <parentalcontrol" + Attribute("schemes", schemes) + ">true</parentalcontrol>\n";
    const std::string recording = mTv.device.Description().pvr ? "true" : "false";
    return text + "      <recording>" + recording + "</recording>\n";
}

std::string Capabilities::Xml() const {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<profilelist>\n";
    text += "  <ui_profile" + Attribute("name", Profile()) + ">\n";
    text += "    <ext>\n" + Extensions() + "    </ext>\n";
    const std::string gateways = mTv.device.Description().ciPlus ? Attribute("protectionGateways", "ci+") : "";
    text += "    <drm" + Attribute("DRMSystemID", kDrmSystem) + gateways + ">TS MP4</drm>\n";
    text += "  </ui_profile>\n";
    for (const MediaProfile& media : kMedia) {
        text +=
            std::string("  <") + media.element + Attribute("name", media.name) + Attribute("type", media.type) + "/>\n";
    }
    return text + "  <html5_media>true</html5_media>\n</profilelist>\n";
}

bool Capabilities::Has(int number) const {
    if (number < 0 || static_cast<size_t>(number) >= std::size(kNumbered)) return false;
    return std::find(mFragments.begin(), mFragments.end(), kNumbered[number]) != mFragments.end();
}

// Standard definition uses the smaller decoder.
unsigned ExtraVideoDecodes(const Tv& tv, bool highDefinition) {
    const auto& service = tv.tuner.On()->service;
    const bool decoding = tv.tuner.Used() && service && ShowsVideo(*service);
    if (!highDefinition) return decoding ? kDecoders - 1 : kDecoders;
    return decoding && service->highDefinition ? kHighDefinitionDecoders - 1 : kHighDefinitionDecoders;
}

}  // namespace hbbtv::sim
