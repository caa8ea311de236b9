#include "programmes/programme_fixture.h"

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

void ProgrammeFixture::StartWith(const std::string& programmes) {
    WriteFile(mDirectory / "guide.xml", programmes);
    Start({"--programmes", mDirectory / "guide.xml"});
}

}  // namespace hbbtv::test
