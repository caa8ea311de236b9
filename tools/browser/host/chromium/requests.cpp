#include "chromium/requests.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <utility>

#include "common/text/base64.h"

namespace hbbtv::browser {

namespace {

const char* const kCallPath = "/.hbbtv/call";

// Televisions do not show the icons of pages, and servers of their pages have none.
const char* const kIconPath = "/favicon.ico";
const char* const kIcons = "*://*/favicon.ico";
const char* const kHbbtvType = "application/vnd.hbbtv.xhtml+xml";
const char* const kShownType = "application/xhtml+xml";

// Chromium knows the entities of this document type, and not those of HbbTV's.
const char* const kKnownDocumentType =
    "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Strict//EN\" \"http://www.w3.org/TR/xhtml1/DTD/xhtml1-strict.dtd\">";

constexpr int kNotFound = 404;

struct NetworkError {
    const char* reason;  // of the DevTools protocol
    int code;            // of Chromium
    const char* text;
};

constexpr std::array<NetworkError, 12> kErrors{{
    {"Failed", -2, "net::ERR_FAILED"},
    {"Aborted", -3, "net::ERR_ABORTED"},
    {"TimedOut", -7, "net::ERR_TIMED_OUT"},
    {"AccessDenied", -10, "net::ERR_ACCESS_DENIED"},
    {"ConnectionClosed", -100, "net::ERR_CONNECTION_CLOSED"},
    {"ConnectionReset", -101, "net::ERR_CONNECTION_RESET"},
    {"ConnectionRefused", -102, "net::ERR_CONNECTION_REFUSED"},
    {"ConnectionAborted", -103, "net::ERR_CONNECTION_ABORTED"},
    {"ConnectionFailed", -104, "net::ERR_CONNECTION_FAILED"},
    {"NameNotResolved", -105, "net::ERR_NAME_NOT_RESOLVED"},
    {"InternetDisconnected", -106, "net::ERR_INTERNET_DISCONNECTED"},
    {"AddressUnreachable", -109, "net::ERR_ADDRESS_UNREACHABLE"},
}};

std::string LowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::string Header(const Json::Value& headers, const std::string& name) {
    for (const Json::Value& header : headers) {
        if (LowerCase(header["name"].asString()) == name) return header["value"].asString();
    }
    return "";
}

Json::Value MakeHeader(const std::string& name, const std::string& value) {
    Json::Value header;
    header["name"] = name;
    header["value"] = value;
    return header;
}

LoadFailure FailureFor(const std::string& reason) {
    for (const NetworkError& error : kErrors) {
        if (reason == error.reason) return {error.code, error.text};
    }
    return {kErrors[0].code, kErrors[0].text};
}

Json::Value Pattern(const char* url, const char* stage) {
    Json::Value pattern;
    pattern["urlPattern"] = url;
    pattern["requestStage"] = stage;
    return pattern;
}

// Returns the document with a document type that Chromium knows, if its own is that of HbbTV.
std::string WithKnownDocumentType(const std::string& document) {
    const size_t begin = document.find("<!DOCTYPE");
    const size_t end = document.find('>', begin);
    if (end == std::string::npos || document.substr(begin, end - begin).find("HbbTV") == std::string::npos)
        return document;
    return document.substr(0, begin) + kKnownDocumentType + document.substr(end + 1);
}

// The position after "http://host:port".
size_t AuthorityEnd(const std::string& url, size_t begin) {
    return std::min(url.find_first_of("/?#", begin), url.size());
}

}  // namespace

LoadFailure FailureOf(const std::string& text) {
    for (const NetworkError& error : kErrors) {
        if (text == error.text) return {error.code, text};
    }
    return {kErrors[0].code, text};
}

std::string HostOf(const std::string& url) {
    const size_t scheme = url.find("://");
    if (scheme == std::string::npos) return "";
    const size_t begin = scheme + 3;
    std::string host = url.substr(begin, AuthorityEnd(url, begin) - begin);
    host.erase(0, host.find('@') == std::string::npos ? 0 : host.find('@') + 1);
    return LowerCase(host.substr(0, host.find(':')));
}

std::string PathOf(const std::string& url) {
    const size_t scheme = url.find("://");
    const size_t begin = AuthorityEnd(url, scheme == std::string::npos ? 0 : scheme + 3);
    const std::string escaped = url.substr(begin, std::min(url.find_first_of("?#", begin), url.size()) - begin);
    std::string path;
    for (size_t at = 0; at < escaped.size(); ++at) {
        const bool escape = escaped[at] == '%' && at + 2 < escaped.size() &&
                            std::isxdigit(static_cast<unsigned char>(escaped[at + 1])) != 0 &&
                            std::isxdigit(static_cast<unsigned char>(escaped[at + 2])) != 0;
        path += escape ? static_cast<char>(std::strtol(escaped.substr(at + 1, 2).c_str(), nullptr, 16)) : escaped[at];
        at += escape ? 2 : 0;
    }
    return path;
}

bool Requests::IsOwn(const std::string& url) const {
    const std::string host = HostOf(url);
    const size_t end = host.rfind(mOwnHosts);
    if (end != std::string::npos && end + mOwnHosts.size() == host.size()) return true;
    return std::any_of(mOwn.begin(), mOwn.end(), [&url](const std::string& begin) { return url.rfind(begin, 0) == 0; });
}

void Requests::Enable(const std::string& session) {
    Json::Value params;
    params["patterns"].append(Pattern("*://*/.hbbtv/*", "Request"));
    for (const std::string& begin : mOwn) params["patterns"].append(Pattern((begin + "*").c_str(), "Request"));
    params["patterns"].append(Pattern(("http://*" + mOwnHosts + "/*").c_str(), "Request"));
    params["patterns"].append(Pattern(kIcons, "Request"));
    Json::Value documents = Pattern("*", "Response");
    documents["resourceType"] = "Document";
    params["patterns"].append(documents);
    mChromium.Send(session, "Fetch.enable", params);
}

void Requests::Paused(const std::string& session, const Json::Value& params) {
    const Json::Value& sent = params["request"];
    const std::string url = sent["url"].asString();
    const bool answered = params.isMember("responseStatusCode") || params.isMember("responseErrorReason");
    if (!answered) {
        const Request request{session,
                              params["requestId"].asString(),
                              params["frameId"].asString(),
                              url,
                              sent["headers"]["Range"].asString(),
                              sent["postData"].asString(),
                              params["resourceType"] == "Document"};
        if (PathOf(url) == kIconPath) return Fulfill(request, {204, "", "", ""});
        if (PathOf(url) == kCallPath) return mHandlers.onCall(request);
        if (IsOwn(url)) return mHandlers.onFile(request);
        return Continue(session, params);
    }
    const std::string frame = params["frameId"].asString();
    const std::string reason = params["responseErrorReason"].asString();
    const int status = params["responseStatusCode"].asInt();
    if (!reason.empty()) {
        mHandlers.onFailed(session, frame, FailureFor(reason));
    } else if (status >= 400) {
        mHandlers.onFailed(session, frame, {status, params["responseStatusText"].asString()});
    }
    const std::string type = LowerCase(Header(params["responseHeaders"], "content-type"));
    if (reason.empty() && type.rfind(kHbbtvType, 0) == 0) return Mend(session, params, type);
    Continue(session, params);
}

void Requests::Continue(const std::string& session, const Json::Value& params) {
    Json::Value answer;
    answer["requestId"] = params["requestId"];
    mChromium.Send(session, "Fetch.continueRequest", answer);
}

// Another type in "Fetch.continueResponse" does not keep Chromium from offering the document as a download.
void Requests::Mend(const std::string& session, const Json::Value& params, const std::string& type) {
    Json::Value wanted;
    wanted["requestId"] = params["requestId"];
    mChromium.Send(session, "Fetch.getResponseBody", wanted, [=](const devtools::Answer& answer) {
        if (!answer.Ok()) return Continue(session, params);
        const std::string body = answer.result["body"].asString();
        const std::string document = answer.result["base64Encoded"].asBool() ? FromBase64(body) : body;
        Json::Value mended;
        mended["requestId"] = params["requestId"];
        mended["responseCode"] = params["responseStatusCode"];
        mended["responseHeaders"] = Json::Value(Json::arrayValue);
        for (const Json::Value& header : params["responseHeaders"]) {
            const std::string name = LowerCase(header["name"].asString());
            // The body is no longer compressed.
            if (name == "content-type" || name == "content-length" || name == "content-encoding") continue;
            mended["responseHeaders"].append(header);
        }
        const std::string parameters = type.substr(std::string(kHbbtvType).size());
        mended["responseHeaders"].append(MakeHeader("Content-Type", kShownType + parameters));
        mended["body"] = Base64(WithKnownDocumentType(document));
        mChromium.Send(session, "Fetch.fulfillRequest", mended);
    });
}

void Requests::Fulfill(const Request& request, const Response& response) {
    if (request.document && response.status == kNotFound)
        mHandlers.onFailed(request.session, request.frame, {kNotFound, "Not Found"});
    Json::Value params;
    params["requestId"] = request.id;
    params["responseCode"] = response.status;
    Json::Value& headers = params["responseHeaders"];
    if (!response.type.empty()) headers.append(MakeHeader("Content-Type", response.type));
    headers.append(MakeHeader("Cache-Control", "no-store"));
    headers.append(MakeHeader("Access-Control-Allow-Origin", "*"));
    headers.append(MakeHeader("Accept-Ranges", "bytes"));
    if (!response.range.empty()) headers.append(MakeHeader("Content-Range", response.range));
    const bool page = response.type.rfind(kShownType, 0) == 0;
    params["body"] = Base64(page ? WithKnownDocumentType(response.body) : response.body);
    mChromium.Send(request.session, "Fetch.fulfillRequest", params);
}

}  // namespace hbbtv::browser
