// A server for one page on this machine: answers requests, and sends a stream of events to each page. Listens on
// 127.0.0.1 only; whoever does not know the token, which is the first part of each path, gets nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "traffic/web/http_request.h"

namespace hbbtv::traffic {

struct HttpResponse {
    int status = 200;
    std::string type;  // "text/html; charset=utf-8"
    std::string body;
};

// What a page's stream gets next.
struct StreamPart {
    std::string text;       // of server-sent events
    uint64_t position = 0;  // after it
};

struct HttpHandlers {
    // Answers a GET of a path below the token: "" or "other". Runs on the server's thread.
    std::function<HttpResponse(const std::string& path)> get;
    // Answers a POST of JSON. Runs on a thread of its own, so it may wait for other processes for some seconds.
    std::function<HttpResponse(const std::string& path, const std::string& json)> post;
    // Returns what follows a position in the stream, or an empty text. Runs on the server's thread.
    std::function<StreamPart(uint64_t position)> stream;
    // Returns an event that is sent to each stream once a second. Runs on the server's thread.
    std::function<std::string()> tick;
};

class HttpServer {
  public:
    // Port 0: any that is free. Throws Failure(kUnavailable) if it is in use.
    HttpServer(uint16_t port, HttpHandlers handlers);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // Returns the address of the page, with the token: "http://127.0.0.1:40123/2f...c9/".
    std::string Address() const;

    // Serves until Stop().
    void Run();

    // Thread-safe.
    void Stop();

    // Sends what is new to all streams. Thread-safe.
    void Notify();

  private:
    class Body;
    std::unique_ptr<Body> mBody;
};

}  // namespace hbbtv::traffic
