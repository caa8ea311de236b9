// The simulator with services that announce applications. The test serves the events of the application manager and of
// the tab manager: it plays the browser.
#pragma once

#include "simulator_fixture.h"

namespace hbbtv::test {

// The line-up has channels with the triplet 1.1.<number> that announce, as organisation.application:
//   1 Plain     nothing; it is on at the start
//   2 Red       Start, 11.1, starts with it; Text, 11.2, takes digits and TELETEXT, only present
//   3 Free      Library, 12.1f5, starts with it and is not bound to it
//   4 Late      Night, 13.7, starts with it, from 16 years on
//   5 Carousel  Broadcast, 14.1, starts with it from a file of the broadcast
//   6 Xml       Signalled, 15.1, starts with it, its location is in an XML file
//   7 Dark      Unseen, 16.1, would start with it, but there is no signal
//   8 Guarded   Vault, 17.1, starts with it from a file of the broadcast, from 16 years on
class BrowserFixture : public SimulatorFixture {
  protected:
    // Starts the simulator with this time between two pings of the browser.
    void Start(const std::string& ping = "0ms");

    // Returns the next command to the browser: "ShowHideTab isMulti=false showHide=true tabid=3".
    std::string NextCommand() { return NextEventOf("mtm").Text(); }
    void Reply(const std::string& text) { LibraryOf("mtm").Reply(text); }

    // Returns the next message to the library's application manager: "application loaded appid=1 orgid=17".
    std::string NextManagerEvent() { return NextEventOf("application_manager").Text(); }
    void ReplyToManagerEvent(const std::string& text) { LibraryOf("application_manager").Reply(text); }

    // Returns the command that creates an application with its service: in HbbTV mode, shown, with no boundaries.
    static std::string CreateCommand(const std::string& url, const std::string& boundaries = "");

    // Expects the command to create an application, and answers that the application has this tab.
    void AnswerCreateApp(int tab);

    // Changes to a channel whose application starts with it, and answers so that the application has this tab.
    void TuneToTab(int channel, int tab);

    // Reads and answers the commands that fill a new tab. The tab's process gets the number tab + 1000.
    void FillTab(int tab);

    // Returns one entry of the table of applications or tabs, empty when there is none.
    std::string AppEntry(const std::string& id);
    std::string TabEntry(int tab);
};

}  // namespace hbbtv::test
