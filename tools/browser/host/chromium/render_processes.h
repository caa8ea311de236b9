// The processes that render pages. Chromium names the process of a page only at the start of a trace of the page, of
// which there is one at a time.
#pragma once

#include <json/value.h>

#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "devtools/devtools.h"

namespace hbbtv::browser {

class RenderProcesses {
  public:
    using OnProcess = std::function<void(int process)>;
    using Send = std::function<void(const std::string& page, const std::string& method, const Json::Value& params,
                                    devtools::DevTools::OnAnswer onAnswer)>;

    explicit RenderProcesses(Send send) : mSend(std::move(send)) {}

    // Calls the functions that wait, with 0.
    ~RenderProcesses();
    RenderProcesses(const RenderProcesses&) = delete;
    RenderProcesses& operator=(const RenderProcesses&) = delete;

    // `onProcess` gets 0 if that fails.
    void Get(const std::string& page, OnProcess onProcess);

    // Ends what has been asked about a page that has gone: Chromium does not report the end of its trace.
    void Gone(const std::string& page);

    // Takes an event of Chromium. Returns whether it is one of traces.
    bool Take(const std::string& method, const Json::Value& params);

  private:
    void Begin();
    void TakeEvents(const Json::Value& events);
    void End();

    const Send mSend;
    std::deque<std::pair<std::string, OnProcess>> mWanted;  // pages; the first one is being traced
    int mProcess = 0;                                       // of the first one
    int mTrace = 0;                                         // number of its trace
};

}  // namespace hbbtv::browser
