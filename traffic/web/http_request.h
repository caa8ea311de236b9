// Requests of a browser, as HTTP/1.1 frames them. What a page of ours does not send is refused: chunked bodies, long
// heads, large bodies.
#pragma once

#include <map>
#include <string>

namespace hbbtv::traffic {

constexpr size_t kLongestHead = 16u << 10;
constexpr size_t kLargestBody = 64u << 10;

struct HttpRequest {
    std::string method;                          // "GET"
    std::string path;                            // with what follows "?"
    std::map<std::string, std::string> headers;  // names in lower case
    std::string body;

    // Returns the value of a header, or "".
    std::string Header(const std::string& name) const;
};

// Reads one request from the bytes of a connection, in whatever parts they arrive.
class HttpParser {
  public:
    enum class State {
        Incomplete,
        Complete,  // further bytes are ignored
        Refused,
    };

    State Take(const char* bytes, size_t count);

    // Valid when complete.
    const HttpRequest& Request() const { return mRequest; }

    // Returns the status with which the request is refused: 400, 411, 413, 431, 501 or 505.
    int Refusal() const { return mRefusal; }

  private:
    State Refuse(int status);
    State TakeHead();
    State TakeBody();
    bool ReadRequestLine(const std::string& line);
    bool ReadHeader(const std::string& line);
    int BodyProblem();

    std::string mBytes;
    size_t mScanned = 0;  // where the end of the head is looked for
    bool mHeadRead = false;
    size_t mBodySize = 0;
    HttpRequest mRequest;
    int mRefusal = 0;
    State mState = State::Incomplete;
};

}  // namespace hbbtv::traffic
