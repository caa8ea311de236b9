// What the television reports about itself: capabilities, local system, application private data.
#include <filesystem>
#include <set>

#include "presentation/video_broadcast_fixture.h"

namespace hbbtv::test {
namespace {

// Parses the document on its standard input as a browser would and prints one element per line.
const char* const kReadXml = R"(
import sys, xml.etree.ElementTree as tree
def show(element, depth):
    attributes = ''.join(' %s=%s' % pair for pair in sorted(element.attrib.items()))
    text = (element.text or '').strip()
    print('.' * depth + element.tag + attributes + (': ' + text if text else ''))
    for child in element: show(child, depth + 1)
show(tree.fromstring(sys.stdin.buffer.read()), 0)
)";

std::string Elements(const std::string& xml) {
    ChildProcess reader({"python3", "-c", kReadXml});
    reader.Write(xml);
    reader.CloseInput();
    EXPECT_EQ(reader.WaitForExit(), 0) << xml << reader.Output();
    return reader.Output();
}

class Terminal : public VideoBroadcastFixture {
  protected:
    Terminal() { mFamily = "local_system"; }

    std::string Xml() { return Handle("capabilities.GetXmlCapabilities"); }
    bool Has(int capability) { return Get("capabilities.HasCapability", {{"capability_type", capability}}).asBool(); }

    // "SD HD"
    std::string ExtraDecodes() {
        return Get("capabilities.GetExtraSDVideoDecodes").asString() + " " +
               Get("capabilities.GetExtraHDVideoDecodes").asString();
    }

    int FreeMemory() { return Get("application_private_data.getFreeMem").asInt(); }
};

TEST_F(Terminal, ReturnsItsCapabilitiesInADocument) {
    Start();
    EXPECT_EQ(Elements(Xml()),
              "profilelist\n"
              ".ui_profile name=OITF_HD_UIPROF+META_SI+META_EIT+TRICKMODE+RTSP+AVCAD+DRM+PVR+DVB_S\n"
              "..ext\n"
              "...colorkeys: true\n"
              "...video_broadcast minSize=0 scaling=arbitrary type=ID_DVB_S: true\n"
              "...parentalcontrol schemes=dvb-si urn:oipf:GermanyFSKCS "
              "urn:mpeg:mpeg7:cs:MPAAParentalRatingCS:2001: true\n"
              "...recording: true\n"
              "..drm DRMSystemID=urn:dvb:casystemid:19188: TS MP4\n"
              ".audio_profile name=MPEG1_L3 type=audio/mpeg\n"
              ".audio_profile name=HEAAC type=audio/mp4\n"
              ".video_profile name=TS_AVC_SD_25_HEAAC type=video/mpeg\n"
              ".video_profile name=TS_AVC_HD_25_HEAAC type=video/mpeg\n"
              ".video_profile name=MP4_AVC_SD_25_HEAAC type=video/mp4\n"
              ".video_profile name=MP4_AVC_HD_25_HEAAC type=video/mp4\n"
              ".html5_media: true\n");
    EXPECT_EQ(Get("capabilities.GetTerminalCapability"),
              "OITF_HD_UIPROF+META_SI+META_EIT+TRICKMODE+RTSP+AVCAD+DRM+PVR+DVB_S");
}

TEST_F(Terminal, ChangesItsCapabilitiesWithWhatIsPluggedInAndAdded) {
    Start();
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_EQ(Tell("ci-plus on"), "ok");
    const std::string manager = Handle("parental_control_manager.Create");
    EXPECT_EQ(RetOf(manager, "parental_control_manager.AddScheme", {{"name", "x<&>\"'"}, {"values", "a"}}), 0);
    const std::string elements = Elements(Xml());
    for (const std::string line :
         {".ui_profile name=OITF_HD_UIPROF+META_SI+META_EIT+TRICKMODE+RTSP+AVCAD+DRM+DVB_S\n", "...recording: false\n",
          "..drm DRMSystemID=urn:dvb:casystemid:19188 protectionGateways=ci+: TS MP4\n", " x<&>\"': true\n"}) {
        EXPECT_NE(elements.find(line), std::string::npos) << line << elements;
    }
}

TEST_F(Terminal, HasTheCapabilitiesThatTheDocumentNames) {
    Start();
    // OITF_HD_UIPROF, META_SI, META_EIT, TRICKMODE, RTSP, AVCAD, DRM, PVR; DVB_S is 9.
    const std::set<int> had{0, 1, 2, 3, 4, 5, 6, 7, 9};
    for (int number = -1; number < 20; ++number) EXPECT_EQ(Has(number), had.count(number) == 1) << number;
    EXPECT_FALSE(Has(2147483647));
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_FALSE(Has(7));
    EXPECT_EQ(Ret("capabilities.HasCapability"), -1) << "no number";
    EXPECT_EQ(Ret("capabilities.HasCapability", {{"capability_type", "PVR"}}), -1);
    ExpectOtherCodesRefused("capabilities");
}

TEST_F(Terminal, HasAsManyDecodersFreeAsNothingUses) {
    Start();
    EXPECT_EQ(ExtraDecodes(), "2 1");
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(ExtraDecodes(), "1 1") << "One is of standard definition";
    Tune(vb, 2);
    EXPECT_EQ(ExtraDecodes(), "1 0") << "Two is of high definition";
    EXPECT_EQ(RetOf(vb, "video_broadcast.Stop"), 0);
    EXPECT_EQ(ExtraDecodes(), "2 1");
}

TEST_F(Terminal, ReturnsItsNamesAndVersions) {
    Start();
    ExpectValues(R"({"GetVendorName": "Example", "GetModelName": "Simulated 40", "GetFamilyName": "Simulated",
                     "GetSoftwareVersion": "1.0", "GetHardwareVersion": "1.0"})");
    EXPECT_EQ(Handle("GetSerialNumber").size(), 10u);
    EXPECT_EQ(Handle("GetDeviceID").find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(Handle("GetDeviceID").size(), 32u);
    EXPECT_EQ(Get("GetPvrEnabled"), 1);
    EXPECT_EQ(Get("GetCiplusEnabled"), 0);
    ExpectOtherCodesRefused("local_system");
}

TEST_F(Terminal, KeepsItsIdentityInTheStateDirectory) {
    const std::string state = mDirectory / "state";
    Start({"--state", state});
    const std::string id = Handle("GetDeviceID");
    const std::string serial = Handle("GetSerialNumber");
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_EQ(Tell("ci-plus on"), "ok");
    EXPECT_EQ(Tell("software-update 2.1"), "ok");
    EXPECT_EQ(Stop(), 0);
    Start({"--state", state});
    EXPECT_EQ(Handle("GetDeviceID"), id);
    EXPECT_EQ(Handle("GetSerialNumber"), serial);
    EXPECT_EQ(Handle("GetSoftwareVersion"), "2.1");
    EXPECT_EQ(Get("GetPvrEnabled"), 0);
    EXPECT_EQ(Get("GetCiplusEnabled"), 1);
    EXPECT_EQ(Stop(), 0);
    Start();
    EXPECT_NE(Handle("GetDeviceID"), id) << "without the directory it is another one";
}

TEST_F(Terminal, CanBeDescribedByHand) {
    std::filesystem::create_directory(mDirectory / "state");
    WriteFile(mDirectory / "state/device.json", R"({"vendorName": "K\u00f6ln", "pvr": false, "deviceId": "#1"})");
    Start({"--state", mDirectory / "state"});
    EXPECT_EQ(Handle("GetVendorName"), "K\xc3\xb6ln");
    EXPECT_EQ(Handle("GetDeviceID"), "#1");
    EXPECT_EQ(Handle("GetModelName"), "Simulated 40");
    EXPECT_EQ(Get("GetPvrEnabled"), 0);
    for (const std::string damaged : {"[]", R"({"pvr": 1})", R"({"vendorName": null})"}) {
        EXPECT_EQ(Stop(), 0);
        WriteFile(mDirectory / "state/device.json", damaged);
        Start({"--state", mDirectory / "state"});
        EXPECT_EQ(Handle("GetVendorName"), "Example") << damaged;
    }
    EXPECT_TRUE(std::filesystem::exists(mDirectory / "state/device.json.damaged-3"));
}

TEST_F(Terminal, RefusesWhatCannotBeKeptAndChangesNothing) {
    const std::string state = mDirectory / "state";
    Start({"--state", state});
    std::filesystem::create_directory(state + "/device.json");
    std::filesystem::create_directory(state + "/parental_control.json");
    std::filesystem::create_directory(state + "/preferences.json");
    EXPECT_EQ(Ret("GetDeviceID"), -1);
    EXPECT_EQ(Tell("pvr off").substr(0, 6), "error:");
    EXPECT_EQ(Get("GetPvrEnabled"), 1);
    EXPECT_EQ(Tell("parental-threshold dvb-si 4").substr(0, 6), "error:");
    EXPECT_EQ(Ask("parental_control_manager.GetLocalParentalRating")["parentRating"], 18);
    const std::string manager = Handle("parental_control_manager.Create");
    const std::string scheme =
        HandleOf(manager, "parental_control_manager.GetParentalRatingSchemeByIndex", {{"index", 1u}});
    const std::string threshold = HandleOf(scheme, "parental_control_manager.GetThreshold");
    EXPECT_EQ(Tell("parental-threshold urn:oipf:GermanyFSKCS 6").substr(0, 6), "error:");
    EXPECT_EQ(GetOf(threshold, "parental_control_manager.GetValue"), 4) << "the position of 18";
    EXPECT_EQ(GetOf(scheme, "parental_control_manager.GetThreshold"), threshold);
    EXPECT_EQ(RetOf(manager, "parental_control_manager.AddScheme", {{"name", "x"}, {"values", "a"}}), -1);
    EXPECT_EQ(GetOf(manager, "parental_control_manager.GetParentalRatingSchemeNum"), 3);
}

TEST_F(Terminal, RecordsOnlyWithADisk) {
    Start();
    ObjectIn("presenting");
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_EQ(Tell("record"), "error: there is no disk for recordings");
    EXPECT_EQ(Tell("pvr on"), "ok");
    EXPECT_EQ(Tell("record"), "ok");
    EXPECT_EQ(Tell("pvr"), "error: usage: pvr on|off");
    EXPECT_EQ(Tell("ci-plus maybe"), "error: usage: ci-plus on|off");
    EXPECT_EQ(Tell("software-update"), "error: usage: software-update VERSION");
}

TEST_F(Terminal, ReturnsTheFreeMemory) {
    Start();
    EXPECT_EQ(FreeMemory(), 67108864);
    EXPECT_EQ(Tell("free-memory 2147483647"), "ok");
    EXPECT_EQ(FreeMemory(), 2147483647);
    EXPECT_EQ(Tell("free-memory unknown"), "ok");
    EXPECT_EQ(FreeMemory(), -1);
    EXPECT_EQ(Tell("free-memory 0"), "ok");
    EXPECT_EQ(FreeMemory(), 0);
    for (const std::string wrong : {"", " 2147483648", " -1", " 1 2", " much"}) {
        EXPECT_EQ(Tell("free-memory" + wrong), "error: usage: free-memory BYTES|unknown");
    }
    EXPECT_EQ(FreeMemory(), 0);
}

TEST_F(Terminal, ReturnsTheCurrentChannel) {
    Start();
    const std::string vb = NewObject();
    EXPECT_EQ(Get("application_private_data.getCurrentChannel"), Channel(vb, 1));
    EXPECT_EQ(Tell("zap 2"), "ok Two");
    EXPECT_EQ(Get("application_private_data.getCurrentChannel"), Channel(vb, 2));
    ExpectOtherCodesRefused("application_private_data");
}

}  // namespace
}  // namespace hbbtv::test
