// The requests of pages that Chromium passes on instead of sending them: calls of the platform, and files of origins
// that exist only here. Also mends answers of servers that Chromium would not show.
#pragma once

#include <json/value.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "devtools/devtools.h"

namespace hbbtv::browser {

// A request that is answered here. Chromium waits until Fulfill() or Fail() is called, once.
struct Request {
    std::string session;
    std::string id;
    std::string frame;
    std::string url;
    std::string range;  // header
    std::string body;
    bool document = false;  // for a page or a frame
};

// The answer to a request.
struct Response {
    int status = 200;
    std::string type;
    std::string body;
    std::string range;  // "bytes 0-99/100" for a part
};

// Of a server's answer, or of none.
struct LoadFailure {
    int code;
    std::string text;
};

// The code of a load that another one has replaced.
inline constexpr int kAborted = -3;

// Returns the failure with Chromium's code for this text, "net::ERR_NAME_NOT_RESOLVED", or of -2.
LoadFailure FailureOf(const std::string& text);

class Requests {
  public:
    struct Handlers {
        std::function<void(const Request& request)> onCall;  // of the platform
        std::function<void(const Request& request)> onFile;  // of an origin of ours
        std::function<void(const std::string& session, const std::string& frame, const LoadFailure& failure)> onFailed;
    };

    // `own` are the beginnings of URLs that are answered here; `ownHosts` is the end of host names that are.
    Requests(devtools::DevTools& chromium, std::vector<std::string> own, std::string ownHosts, Handlers handlers)
        : mChromium(chromium), mOwn(std::move(own)), mOwnHosts(std::move(ownHosts)), mHandlers(std::move(handlers)) {}

    // Makes Chromium pass the requests of a target on.
    void Enable(const std::string& session);

    // Takes "Fetch.requestPaused".
    void Paused(const std::string& session, const Json::Value& params);

    void Fulfill(const Request& request, const Response& response);

  private:
    void Mend(const std::string& session, const Json::Value& params, const std::string& type);
    void Continue(const std::string& session, const Json::Value& params);

    bool IsOwn(const std::string& url) const;

    devtools::DevTools& mChromium;
    const std::vector<std::string> mOwn;
    const std::string mOwnHosts;
    const Handlers mHandlers;
};

// Returns the host name of a URL in lower case, without the port; empty if there is none.
std::string HostOf(const std::string& url);

// Returns the path of a URL, with percent escapes decoded, without query and fragment.
std::string PathOf(const std::string& url);

}  // namespace hbbtv::browser
