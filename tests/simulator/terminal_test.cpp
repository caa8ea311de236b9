// What the television says of itself: capabilities, local system, application private data.
#include <filesystem>
#include <set>

#include "simulated_platform.h"

namespace hbbtv::test {
namespace {

// Reads the document on its standard input as a browser would and prints what is in it, one element a line.
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

class Terminal : public SimulatedPlatform {
  protected:
    void Begin(std::vector<std::string> options = {}) {
        options.insert(options.end(), {"--tune-time", "0ms"});
        Start(options);
    }

    std::string Xml() { return AskAt(kToCapabilities, 0)["xml_capabilities"].asString(); }
    bool Has(int number) { return AskAt(kToCapabilities, 3, {{"capability_type", number}})["available"].asBool(); }

    // "SD HD"
    std::string ExtraDecodes() {
        return AskAt(kToCapabilities, 1)["amount_of_decodes"].asString() + " " +
               AskAt(kToCapabilities, 2)["amount_of_decodes"].asString();
    }

    std::string Said(int method, const char* member) {
        const Json::Value reply = AskAt(kToLocalSystem, method);
        EXPECT_EQ(reply["ret"], 0);
        EXPECT_TRUE(reply[member].isString()) << member;
        return reply[member].asString();
    }

    int Enabled(int method, const char* member) {
        const Json::Value reply = AskAt(kToLocalSystem, method);
        EXPECT_TRUE(reply[member].isInt()) << member;
        return reply[member].asInt();
    }
};

TEST_F(Terminal, TellsItsCapabilitiesInADocument) {
    Begin();
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
    EXPECT_EQ(AskAt(kToCapabilities, 4)["terminalCap"],
              "OITF_HD_UIPROF+META_SI+META_EIT+TRICKMODE+RTSP+AVCAD+DRM+PVR+DVB_S");
}

TEST_F(Terminal, ChangesItsCapabilitiesWithWhatIsPluggedInAndAdded) {
    Begin();
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_EQ(Tell("ci-plus on"), "ok");
    const std::string manager = AskAt(kToParentalControl, 0)["out_handle"].asString();
    EXPECT_EQ(AskAt(kToParentalControl, 25, {{"in_handle", manager}, {"name", "x<&>\"'"}, {"values", "a"}})["ret"], 0);
    const std::string elements = Elements(Xml());
    for (const std::string line :
         {".ui_profile name=OITF_HD_UIPROF+META_SI+META_EIT+TRICKMODE+RTSP+AVCAD+DRM+DVB_S\n", "...recording: false\n",
          "..drm DRMSystemID=urn:dvb:casystemid:19188 protectionGateways=ci+: TS MP4\n", " x<&>\"': true\n"}) {
        EXPECT_NE(elements.find(line), std::string::npos) << line << elements;
    }
}

TEST_F(Terminal, HasTheCapabilitiesThatTheDocumentNames) {
    Begin();
    // OITF_HD_UIPROF, META_SI, META_EIT, TRICKMODE, RTSP, AVCAD, DRM, PVR; DVB_S is 9.
    const std::set<int> had{0, 1, 2, 3, 4, 5, 6, 7, 9};
    for (int number = -1; number < 20; ++number) EXPECT_EQ(Has(number), had.count(number) == 1) << number;
    EXPECT_FALSE(Has(2147483647));
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_FALSE(Has(7));
    EXPECT_EQ(AskAt(kToCapabilities, 3)["ret"], -1) << "no number";
    EXPECT_EQ(AskAt(kToCapabilities, 3, {{"capability_type", "PVR"}})["ret"], -1);
    EXPECT_EQ(AskAt(kToCapabilities, 5)["ret"], -1) << "there is no such operation";
}

TEST_F(Terminal, HasAsManyDecodersFreeAsNothingUses) {
    Begin();
    EXPECT_EQ(ExtraDecodes(), "2 1");
    const std::string vb = ObjectIn("presenting");
    EXPECT_EQ(ExtraDecodes(), "1 1") << "One is of standard definition";
    EXPECT_EQ(SetChannel(vb, Channel(vb, 2)), 0);
    EventsUntil("PlayState 2 0");
    EXPECT_EQ(ExtraDecodes(), "1 0") << "Two is of high definition";
    EXPECT_EQ(RetOf(vb, kStop), 0);
    EXPECT_EQ(ExtraDecodes(), "2 1");
}

TEST_F(Terminal, SaysWhatItIs) {
    Begin();
    EXPECT_EQ(Said(2, "vendorName"), "Example");
    EXPECT_EQ(Said(4, "modelName"), "Simulated 40");
    EXPECT_EQ(Said(6, "familyName"), "Simulated");
    EXPECT_EQ(Said(8, "softwareVersion"), "1.0");
    EXPECT_EQ(Said(10, "hardwareVersion"), "1.0");
    EXPECT_EQ(Said(12, "serialNumber").size(), 10u);
    EXPECT_EQ(Said(0, "deviceID").find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_EQ(Said(0, "deviceID").size(), 32u);
    EXPECT_EQ(Enabled(14, "pvrEnabled"), 1);
    EXPECT_EQ(Enabled(16, "ciplusEnabled"), 0);
    for (const int odd : {1, 3, 5, 7, 9, 11, 13, 15, 17}) EXPECT_EQ(AskAt(kToLocalSystem, odd)["ret"], -1) << odd;
}

TEST_F(Terminal, StaysTheSameTelevisionWhenItRemembers) {
    const std::string state = mDirectory / "state";
    Begin({"--state", state});
    const std::string id = Said(0, "deviceID");
    const std::string serial = Said(12, "serialNumber");
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_EQ(Tell("ci-plus on"), "ok");
    EXPECT_EQ(Tell("software-update 2.1"), "ok");
    EXPECT_EQ(Stop(), 0);
    Begin({"--state", state});
    EXPECT_EQ(Said(0, "deviceID"), id);
    EXPECT_EQ(Said(12, "serialNumber"), serial);
    EXPECT_EQ(Said(8, "softwareVersion"), "2.1");
    EXPECT_EQ(Enabled(14, "pvrEnabled"), 0);
    EXPECT_EQ(Enabled(16, "ciplusEnabled"), 1);
    EXPECT_EQ(Stop(), 0);
    Begin();
    EXPECT_NE(Said(0, "deviceID"), id) << "without the directory it is another one";
}

TEST_F(Terminal, CanBeDescribedByHand) {
    std::filesystem::create_directory(mDirectory / "state");
    WriteFile(mDirectory / "state/device.json", R"({"vendorName": "K\u00f6ln", "pvr": false, "deviceId": "#1"})");
    Begin({"--state", mDirectory / "state"});
    EXPECT_EQ(Said(2, "vendorName"), "K\xc3\xb6ln");
    EXPECT_EQ(Said(0, "deviceID"), "#1");
    EXPECT_EQ(Said(4, "modelName"), "Simulated 40");
    EXPECT_EQ(Enabled(14, "pvrEnabled"), 0);
    for (const std::string damaged : {"[]", R"({"pvr": 1})", R"({"vendorName": null})"}) {
        EXPECT_EQ(Stop(), 0);
        WriteFile(mDirectory / "state/device.json", damaged);
        Begin({"--state", mDirectory / "state"});
        EXPECT_EQ(Said(2, "vendorName"), "Example") << damaged;
    }
    EXPECT_TRUE(std::filesystem::exists(mDirectory / "state/device.json.damaged-3"));
}

TEST_F(Terminal, RefusesWhatCannotBeKeptAndChangesNothing) {
    const std::string state = mDirectory / "state";
    Begin({"--state", state});
    std::filesystem::create_directory(state + "/device.json");
    std::filesystem::create_directory(state + "/parental_control.json");
    std::filesystem::create_directory(state + "/preferences.json");
    EXPECT_EQ(AskAt(kToLocalSystem, 0)["ret"], -1);
    EXPECT_EQ(Tell("pvr off").substr(0, 6), "error:");
    EXPECT_EQ(Enabled(14, "pvrEnabled"), 1);
    EXPECT_EQ(Tell("parental-threshold dvb-si 4").substr(0, 6), "error:");
    EXPECT_EQ(AskAt(kToParentalControl, 50)["parentRating"], 18);
    const std::string manager = AskAt(kToParentalControl, 0)["out_handle"].asString();
    const std::string scheme =
        AskAt(kToParentalControl, 23, {{"in_handle", manager}, {"index", 1u}})["out_handle"].asString();
    const Json::Value threshold = AskAt(kToParentalControl, 30, {{"in_handle", scheme}})["out_handle"];
    EXPECT_EQ(Tell("parental-threshold urn:oipf:GermanyFSKCS 6").substr(0, 6), "error:");
    EXPECT_EQ(AskAt(kToParentalControl, 40, {{"in_handle", threshold}})["out_value"], 4) << "the position of 18";
    EXPECT_EQ(AskAt(kToParentalControl, 30, {{"in_handle", scheme}})["out_handle"], threshold);
    EXPECT_EQ(AskAt(kToParentalControl, 25, {{"in_handle", manager}, {"name", "x"}, {"values", "a"}})["ret"], -1);
    EXPECT_EQ(AskAt(kToParentalControl, 21, {{"in_handle", manager}})["num"], 3);
}

TEST_F(Terminal, RecordsOnlyWithADisk) {
    Begin();
    ObjectIn("presenting");
    EXPECT_EQ(Tell("pvr off"), "ok");
    EXPECT_EQ(Tell("record"), "error: there is no disk to record on");
    EXPECT_EQ(Tell("pvr on"), "ok");
    EXPECT_EQ(Tell("record"), "ok");
    EXPECT_EQ(Tell("pvr"), "error: usage: pvr on|off");
    EXPECT_EQ(Tell("ci-plus maybe"), "error: usage: ci-plus on|off");
    EXPECT_EQ(Tell("software-update"), "error: usage: software-update VERSION");
}

TEST_F(Terminal, TellsApplicationsTheFreeMemory) {
    Begin();
    EXPECT_EQ(AskAt(kToPrivateData, 0)["memSize"], 67108864);
    EXPECT_EQ(Tell("free-memory 2147483647"), "ok");
    EXPECT_EQ(AskAt(kToPrivateData, 0)["memSize"], 2147483647);
    EXPECT_EQ(Tell("free-memory unknown"), "ok");
    EXPECT_EQ(AskAt(kToPrivateData, 0)["memSize"], -1);
    EXPECT_EQ(Tell("free-memory 0"), "ok");
    EXPECT_EQ(AskAt(kToPrivateData, 0)["memSize"], 0);
    for (const std::string wrong : {"", " 2147483648", " -1", " 1 2", " much"}) {
        EXPECT_EQ(Tell("free-memory" + wrong), "error: usage: free-memory BYTES|unknown");
    }
    EXPECT_EQ(AskAt(kToPrivateData, 0)["memSize"], 0);
}

TEST_F(Terminal, TellsApplicationsTheChannelThatIsOn) {
    Begin();
    const std::string vb = NewObject();
    EXPECT_EQ(AskAt(kToPrivateData, 1)["channel"], Channel(vb, 1));
    EXPECT_EQ(Tell("zap 2"), "ok Two");
    EXPECT_EQ(AskAt(kToPrivateData, 1)["channel"], Channel(vb, 2));
    EXPECT_EQ(AskAt(kToPrivateData, 2)["ret"], -1) << "there is no such operation";
}

}  // namespace
}  // namespace hbbtv::test
