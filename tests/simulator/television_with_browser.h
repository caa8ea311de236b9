// A test's own simulator whose services announce applications, with the library's ends of the application manager's and
// the tab manager's sockets in the test's hands: it is the browser.
#pragma once

#include "simulated_platform.h"

namespace hbbtv::test {

// The line-up has channels with the triplet 1.1.<number> that announce, as organisation.application:
//   1 Plain     nothing; it is on at the start
//   2 Red       Start, 11.1, starts with it; Text, 11.2, takes digits and TELETEXT, only present
//   3 Free      Library, 12.1f5, starts with it and is not bound to it
//   4 Late      Night, 13.7, starts with it, from 16 years on
//   5 Carousel  Broadcast, 14.1, starts with it from a file of the broadcast
//   6 Xml       Signalled, 15.1, starts with it, its place is in an XML file
//   7 Dark      Unseen, 16.1, would start with it, but there is no signal
//   8 Guarded   Vault, 17.1, starts with it from a file of the broadcast, from 16 years on
class TelevisionWithBrowser : public SimulatedPlatform {
  protected:
    // With a tune time of 0 and this between two pings.
    void Start(const std::string& ping = "0ms");

    void ServeBrowser() { mBrowser = std::make_unique<LibraryStandIn>(mDirectory / "service_hbbtv_to_mtm"); }
    void ServeApplicationEvents();

    // A request of the application manager; members beside "t".
    Json::Value AskManager(int code, const Members& members = {}) {
        return AskAt(kToApplicationManager, code, members);
    }

    int ManagerRet(int code, const Members& members = {}) { return RetAt(kToApplicationManager, code, members); }
    void TellManager(int code, const Members& members) { SendAt(kToApplicationManager, code, members); }

    // What the browser tells; the status.
    int Notify(int method, const Members& members = {});

    // The next command to the browser with its members in order, each in one line of JSON:
    // "ShowHideTab isMulti=false showHide=true tabid=3".
    std::string NextCommand();
    void Reply(const std::string& text) { mBrowser->Reply(text); }

    // The next message to the library's application manager, likewise: "237 appid=1 orgid=17".
    std::string NextManagerEvent();

    // To a channel whose application starts with it; answers what is asked, so that the application has this tab.
    void TuneToTab(int channel, int tab);

    // The commands that fill a new tab, read and answered; the tab's process gets the number tab + 1000.
    void FillTab(int tab);

    // One entry of the tables, empty when there is none.
    std::string AppEntry(const std::string& id);
    std::string TabEntry(int tab);

    // That the simulator has said this so often and no more.
    void ExpectSaid(const std::string& text, int times) const;

    std::unique_ptr<LibraryStandIn> mBrowser;
    std::unique_ptr<LibraryStandIn> mManagerEvents;
};

}  // namespace hbbtv::test
