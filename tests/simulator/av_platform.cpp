// The fixture around programmes, components and AV control: see av_platform.h.
#include "av_platform.h"

namespace hbbtv::test {

const char* const kProgrammes = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE tv SYSTEM "xmltv.dtd">
<tv>
  <channel id="one"><display-name>One</display-name></channel>
  <channel id="two"><display-name>Two</display-name></channel>
  <programme channel="one" start="20200101000000 +0000" stop="20370101000000 +0000">
    <title lang="de">Long Day</title>
    <sub-title>The Start</sub-title>
    <desc>It begins.</desc>
    <category>News</category>
    <rating system="FSK"><value>12</value></rating>
  </programme>
  <programme channel="one" start="20370101000000 +0000" stop="20370101010000 +0000"><title>The End</title></programme>
  <programme channel="two" start="20370101000000 +0000" stop="20370101010000 +0000"><title>Later</title></programme>
</tv>
)";

void AvPlatform::Begin(const std::string& programmes, std::vector<std::string> options) {
    if (!programmes.empty()) {
        WriteFile(mDirectory / "guide.xml", programmes);
        options.insert(options.end(), {"--programmes", mDirectory / "guide.xml"});
    }
    options.insert(options.end(), {"--tune-time", "0ms"});
    StopServingEvents();
    Start(options);
}

std::string AvPlatform::ProgrammeOf(const std::string& vb, unsigned index) {
    return AskOf(vb, kGetProgrammeByIndex, {{"index", index}})["programme"].asString();
}

std::string AvPlatform::ComponentOf(const std::string& vb, int type, unsigned index) {
    return AskOf(vb, kGetComponent, {{"comType", type}, {"index", index}})["component"].asString();
}

std::string AvPlatform::Presenting(int sid) {
    const std::string vb = NewObject();
    Tune(vb, sid);
    return vb;
}

void AvPlatform::Tune(const std::string& vb, int sid) {
    EXPECT_EQ(SetChannel(vb, Channel(vb, sid)), 0);
    EventsUntil("PlayState 2 0");
}

}  // namespace hbbtv::test
