#include "traffic/web/http_server.h"

#include <sys/random.h>

#include <array>
#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/post.hpp>
#include <asio/read.hpp>
#include <asio/steady_timer.hpp>
#include <asio/thread_pool.hpp>
#include <asio/write.hpp>
#include <atomic>
#include <chrono>
#include <cstring>
#include <set>

#include "common/failure.h"

namespace hbbtv::traffic {

namespace {

using asio::ip::tcp;

// A page has one stream and a few requests.
constexpr size_t kMostConnections = 64;
constexpr std::chrono::seconds kPatience{10};  // for a request, and for a response
constexpr std::chrono::seconds kTick{1};

std::string RandomToken() {
    std::array<unsigned char, 16> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        throw Failure(kUnavailable, std::string("no random numbers: ") + std::strerror(errno));
    }
    std::string token;
    for (const unsigned char byte : bytes) {
        token += "0123456789abcdef"[byte >> 4];
        token += "0123456789abcdef"[byte & 15];
    }
    return token;
}

// The time does not depend on how much of it is right.
bool HasToken(const std::string& path, const std::string& token) {
    const std::string prefix = "/" + token + "/";
    if (path.size() < prefix.size()) return false;
    int difference = 0;
    for (size_t i = 0; i < prefix.size(); ++i) difference |= path[i] ^ prefix[i];
    return difference == 0;
}

const char* Reason(int status) {
    switch (status) {
        case 200:
            return "OK";
        case 403:
            return "Forbidden";
        case 404:
            return "Not Found";
        case 405:
            return "Method Not Allowed";
        case 411:
            return "Length Required";
        case 413:
            return "Content Too Large";
        case 415:
            return "Unsupported Media Type";
        case 431:
            return "Request Header Fields Too Large";
        case 501:
            return "Not Implemented";
        case 505:
            return "HTTP Version Not Supported";
        default:
            return "Bad Request";
    }
}

HttpResponse Refused(int status) {
    return {status, "text/plain; charset=utf-8", std::string(Reason(status)) + "\n"};
}

// No other page may read, embed or keep what is sent.
std::string Head(int status, const std::string& type, const std::string& more) {
    return "HTTP/1.1 " + std::to_string(status) + " " + Reason(status) + "\r\nContent-Type: " + type +
           "\r\nCache-Control: no-store\r\nX-Content-Type-Options: nosniff\r\nX-Frame-Options: DENY\r\n"
           "Content-Security-Policy: frame-ancestors 'none'\r\nCross-Origin-Resource-Policy: same-origin\r\n"
           "Referrer-Policy: no-referrer\r\nConnection: close\r\n" +
           more + "\r\n";
}

// Another page's script can send requests here as well, and a name that resolves to 127.0.0.1 leads here.
int RefusalOf(const HttpRequest& request, uint16_t port, const std::string& token) {
    const std::string host = request.Header("host");
    const std::string number = std::to_string(port);
    if (host != "127.0.0.1:" + number && host != "localhost:" + number) return 403;
    if (!HasToken(request.path, token)) return 404;
    const std::string origin = request.Header("origin");
    if (!origin.empty() && origin != "http://" + host) return 403;
    const std::string site = request.Header("sec-fetch-site");
    if (!site.empty() && site != "same-origin" && site != "none") return 403;
    if (request.method == "GET") return 0;
    if (request.method != "POST") return 405;
    return request.Header("content-type") == "application/json" ? 0 : 415;
}

uint64_t NumberIn(const std::string& digits) {
    const bool valid =
        !digits.empty() && digits.size() < 19 && digits.find_first_not_of("0123456789") == std::string::npos;
    return valid ? std::stoull(digits) : 0;
}

}  // namespace

class HttpServer::Body {
  public:
    Body(uint16_t port, HttpHandlers handlers) : mHandlers(std::move(handlers)), mAcceptor(mContext), mTimer(mContext) {
        const tcp::endpoint endpoint(asio::ip::address_v4::loopback(), port);
        asio::error_code error;
        mAcceptor.open(endpoint.protocol(), error);
        mAcceptor.set_option(tcp::acceptor::reuse_address(true), error);
        if (!error) mAcceptor.bind(endpoint, error);
        if (!error) mAcceptor.listen(asio::socket_base::max_listen_connections, error);
        if (error) {
            throw Failure(kUnavailable, "cannot serve 127.0.0.1:" + std::to_string(port) + ": " + error.message());
        }
        mPort = mAcceptor.local_endpoint().port();
    }

    ~Body() { mWorkers.join(); }

    std::string Address() const { return "http://127.0.0.1:" + std::to_string(mPort) + "/" + mToken + "/"; }

    void Run() {
        Accept();
        Tick();
        mContext.run();
    }

    void Stop() { mContext.stop(); }

    void Notify() {
        if (mNotified.exchange(true)) return;
        asio::post(mContext, [this] {
            mNotified = false;
            PumpAll();
        });
    }

  private:
    class Connection;

    void Accept();
    void Tick();
    void PumpAll();

    const HttpHandlers mHandlers;
    const std::string mToken = RandomToken();
    uint16_t mPort = 0;
    size_t mOpen = 0;  // connections; the context ends some of them when it is destroyed
    asio::io_context mContext;
    tcp::acceptor mAcceptor;
    asio::steady_timer mTimer;
    asio::thread_pool mWorkers{4};
    std::atomic<bool> mNotified{false};
    std::set<std::shared_ptr<Connection>> mStreams;
};

// One request and its response, or a stream.
class HttpServer::Body::Connection : public std::enable_shared_from_this<Connection> {
  public:
    Connection(Body& body, tcp::socket socket) : mBody(body), mSocket(std::move(socket)), mTimer(body.mContext) {
        ++mBody.mOpen;
    }
    ~Connection() { --mBody.mOpen; }

    void Start() {
        SetLimit();
        Read();
    }

    // Sends the next part of the stream, unless a part is being sent.
    void Pump(const std::string& before = "") {
        if (mSending) return;
        StreamPart part = mBody.mHandlers.stream(mPosition);
        if (part.text.empty() && before.empty()) return;
        if (!part.text.empty()) mPosition = part.position;
        Send(before + part.text, [self = shared_from_this()] { self->Pump(); });
    }

    void Close() {
        asio::error_code ignored;
        mTimer.cancel();
        mSocket.close(ignored);
    }

  private:
    void SetLimit() {
        mTimer.expires_after(kPatience);
        mTimer.async_wait([self = shared_from_this()](const asio::error_code& error) {
            if (!error) self->End();
        });
    }

    void Read() {
        mSocket.async_read_some(asio::buffer(mBuffer),
                                [self = shared_from_this()](const asio::error_code& error, size_t count) {
                                    error ? self->End() : self->Taken(count);
                                });
    }

    void Taken(size_t count) {
        if (mAnswered) return Read();  // of a stream: nothing more is expected, but its end
        switch (mParser.Take(mBuffer.data(), count)) {
            case HttpParser::State::Incomplete:
                return Read();
            case HttpParser::State::Refused:
                return Respond(Refused(mParser.Refusal()));
            case HttpParser::State::Complete:
                return Answer(mParser.Request());
        }
    }

    void Answer(const HttpRequest& request) {
        const int refusal = RefusalOf(request, mBody.mPort, mBody.mToken);
        if (refusal != 0) return Respond(Refused(refusal));
        const std::string path = request.path.substr(mBody.mToken.size() + 2);
        if (request.method == "POST") return AnswerLater(path, request.body);
        if (path == "events") return BeginStream(NumberIn(request.Header("last-event-id")));
        Respond(mBody.mHandlers.get(path));
    }

    void AnswerLater(const std::string& path, const std::string& json) {
        mTimer.cancel();
        asio::post(mBody.mWorkers, [self = shared_from_this(), path, json]() mutable {
            Body& body = self->mBody;
            HttpResponse response = body.mHandlers.post(path, json);
            // Handed over entirely: a connection ends on the server's thread.
            asio::post(body.mContext,
                       [self = std::move(self), response = std::move(response)] { self->Respond(response); });
        });
    }

    void Respond(const HttpResponse& response) {
        SetLimit();
        const std::string length = "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
        Send(Head(response.status, response.type, length) + response.body,
             [self = shared_from_this()] { self->HangUp(); });
    }

    // What the client still sends is read and dropped: closing at once would take the response from it.
    void HangUp() {
        asio::error_code ignored;
        mSocket.shutdown(tcp::socket::shutdown_send, ignored);
        mAnswered = true;
        Read();
    }

    void BeginStream(uint64_t position) {
        mTimer.cancel();
        mAnswered = true;
        mPosition = position;
        mBody.mStreams.insert(shared_from_this());
        Read();
        Send(Head(200, "text/event-stream; charset=utf-8", "") + "retry: 1000\n\n",
             [self = shared_from_this()] { self->Pump(); });
    }

    void Send(std::string text, std::function<void()> then) {
        mOutput = std::move(text);
        mSending = true;
        asio::async_write(mSocket, asio::buffer(mOutput),
                          [self = shared_from_this(), then](const asio::error_code& error, size_t) {
                              self->mSending = false;
                              error ? self->End() : then();
                          });
    }

    void End() {
        Close();
        mBody.mStreams.erase(shared_from_this());
    }

    Body& mBody;
    tcp::socket mSocket;
    asio::steady_timer mTimer;
    std::array<char, 8192> mBuffer{};
    HttpParser mParser;
    std::string mOutput;
    bool mSending = false;
    bool mAnswered = false;
    uint64_t mPosition = 0;
};

void HttpServer::Body::Accept() {
    mAcceptor.async_accept([this](const asio::error_code& error, tcp::socket socket) {
        if (error == asio::error::operation_aborted) return;
        if (!error && mOpen < kMostConnections) std::make_shared<Connection>(*this, std::move(socket))->Start();
        Accept();
    });
}

void HttpServer::Body::Tick() {
    mTimer.expires_after(kTick);
    mTimer.async_wait([this](const asio::error_code& error) {
        if (error) return;
        const std::string event = mStreams.empty() ? "" : mHandlers.tick();
        for (const auto& stream : std::set<std::shared_ptr<Connection>>(mStreams)) stream->Pump(event);
        Tick();
    });
}

void HttpServer::Body::PumpAll() {
    for (const auto& stream : std::set<std::shared_ptr<Connection>>(mStreams)) stream->Pump();
}

HttpServer::HttpServer(uint16_t port, HttpHandlers handlers)
    : mBody(std::make_unique<Body>(port, std::move(handlers))) {}

HttpServer::~HttpServer() = default;

std::string HttpServer::Address() const {
    return mBody->Address();
}

void HttpServer::Run() {
    mBody->Run();
}

void HttpServer::Stop() {
    mBody->Stop();
}

void HttpServer::Notify() {
    mBody->Notify();
}

}  // namespace hbbtv::traffic
