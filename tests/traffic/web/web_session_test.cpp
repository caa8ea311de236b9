// The server of the live page: who gets what from it.
#include "traffic/web/web_session.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "common/failure.h"
#include "raw_listener.h"
#include "sample_records.h"
#include "scratch_directory.h"
#include "traffic/select/redaction.h"
#include "wait_for.h"

namespace hbbtv::traffic {
namespace {

using test::GetName;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A connection to the server, as a browser or another program opens it.
class Client {
  public:
    Client(int port, const std::string& bytes) : mSocket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval patience{20, 0};
        setsockopt(mSocket.Get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
        EXPECT_EQ(connect(mSocket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
        Send(bytes);
    }

    void Send(const std::string& bytes) { send(mSocket.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL); }

    // Reads until the text has arrived. Returns all that has, also at the end of the connection.
    const std::string& Until(const std::string& text) {
        char bytes[65536];
        for (size_t from = 0; mText.find(text, from) == std::string::npos;) {
            from = mText.size() < text.size() ? 0 : mText.size() - text.size();
            const ssize_t count = recv(mSocket.Get(), bytes, sizeof(bytes), 0);
            if (count <= 0) break;
            mText.append(bytes, static_cast<size_t>(count));
        }
        return mText;
    }

    const std::string& ToTheEnd() { return Until("\x01 does not arrive"); }

  private:
    const Descriptor mSocket;
    std::string mText;
};

class Web : public testing::Test {
  protected:
    void SetUp() override { Serve({}); }
    void TearDown() override { End(); }

    void Serve(std::function<std::vector<Record>()> open, std::function<void(Record&)> redact = nullptr) {
        session =
            std::make_unique<WebSession>(WebSettings{directory.Path(), "", 0, {}, std::move(open), std::move(redact)});
        thread = std::thread([this] { session->Run(); });
        const std::string address = session->Address();  // http://127.0.0.1:PORT/TOKEN/
        port = std::stoi(address.substr(address.rfind(':') + 1));
        path = address.substr(address.find('/', 8));
        host = address.substr(7, address.find('/', 8) - 7);
    }

    void End() {
        session->Stop();
        thread.join();
    }

    std::string Head(const std::string& method, const std::string& at, const std::string& headers = "") const {
        return method + " " + at + " HTTP/1.1\r\nHost: " + host + "\r\n" + headers + "\r\n";
    }

    // Returns the response.
    std::string Get(const std::string& at, const std::string& headers = "") const {
        return Client(port, Head("GET", at, headers)).ToTheEnd();
    }

    std::string Post(const std::string& at, const std::string& json,
                     const std::string& headers = "Content-Type: application/json\r\n") {
        return Client(
                   port,
                   Head("POST", path + at, headers + "Content-Length: " + std::to_string(json.size()) + "\r\n") + json)
            .ToTheEnd();
    }

    Record Numbered(uint64_t number) {
        Record record = GetName();
        record.number = number;
        return record;
    }

    const hbbtv::test::ScratchDirectory directory;
    std::unique_ptr<WebSession> session;
    std::thread thread;
    int port = 0;
    std::string path;
    std::string host;
};

TEST_F(Web, ServesThePageToWhoKnowsTheToken) {
    EXPECT_EQ(path.size(), 34u);
    const std::string response = Get(path);
    EXPECT_THAT(response, StartsWith("HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\n"));
    EXPECT_THAT(response, HasSubstr("<title>HbbTV traffic</title>"));
    for (const char* header : {"Cache-Control: no-store", "X-Frame-Options: DENY", "Referrer-Policy: no-referrer",
                               "X-Content-Type-Options: nosniff", "Cross-Origin-Resource-Policy: same-origin"}) {
        EXPECT_THAT(response, HasSubstr(header));
    }
    EXPECT_THAT(response, Not(HasSubstr("Access-Control")));
}

TEST_F(Web, GivesNothingToOthers) {
    std::string other = path;
    other[5] = other[5] == '0' ? '1' : '0';
    for (const std::string& at :
         {std::string("/"), other, path.substr(0, 20), path + "other", "/" + path, path + "../"}) {
        EXPECT_THAT(Get(at), StartsWith("HTTP/1.1 404 ")) << at;
    }
    EXPECT_THAT(Client(port, "GET " + path + " HTTP/1.1\r\n\r\n").ToTheEnd(), StartsWith("HTTP/1.1 403 "));
    for (const std::string& name :
         {std::string("evil.example:") + std::to_string(port), std::string("127.0.0.1"), host + ".evil.example"}) {
        EXPECT_THAT(Client(port, "GET " + path + " HTTP/1.1\r\nHost: " + name + "\r\n\r\n").ToTheEnd(),
                    StartsWith("HTTP/1.1 403 "))
            << name;
    }
    EXPECT_THAT(Get(path, "Origin: http://evil.example\r\n"), StartsWith("HTTP/1.1 403 "));
    EXPECT_THAT(Get(path, "Origin: null\r\n"), StartsWith("HTTP/1.1 403 "));
    EXPECT_THAT(Get(path + "events", "Sec-Fetch-Site: cross-site\r\n"), StartsWith("HTTP/1.1 403 "));
    EXPECT_THAT(Get(path, "Sec-Fetch-Site: none\r\n"), StartsWith("HTTP/1.1 200 "));
    EXPECT_THAT(Get(path, "Origin: http://" + host + "\r\nSec-Fetch-Site: same-origin\r\n"),
                StartsWith("HTTP/1.1 200 "));
    EXPECT_THAT(Client(port, Head("PUT", path)).ToTheEnd(), StartsWith("HTTP/1.1 405 "));
    EXPECT_THAT(Client(port, Head("OPTIONS", path, "Origin: http://evil.example\r\n")).ToTheEnd(),
                StartsWith("HTTP/1.1 403 "));
}

TEST_F(Web, TakesNothingButJsonOfThisPage) {
    const std::string question = R"({"operation":"channel.GetName","members":{"c_handle":"0x1"}})";
    EXPECT_THAT(Post("ask", question, "Content-Type: text/plain\r\n"), StartsWith("HTTP/1.1 415 "));
    EXPECT_THAT(Post("ask", question, ""), StartsWith("HTTP/1.1 415 "));
    EXPECT_THAT(Post("ask", question, "Content-Type: application/json\r\nOrigin: http://evil.example\r\n"),
                StartsWith("HTTP/1.1 403 "));
    EXPECT_THAT(Post("ask", question), StartsWith("HTTP/1.1 200 "));
    EXPECT_THAT(Post("other", question), StartsWith("HTTP/1.1 404 "));
    EXPECT_THAT(Post("ask", "no JSON"), HasSubstr("not valid JSON"));
    EXPECT_THAT(Post("ask", "[]"), HasSubstr("not an object"));
    EXPECT_THAT(Post("ask", "{}"), StartsWith("HTTP/1.1 404 "));
}

TEST_F(Web, AsksOnlyWhatChangesNothing) {
    EXPECT_THAT(Post("ask", R"({"operation":"channel.Release","members":{"c_handle":"0x1"}})"),
                HasSubstr("channel.Release changes something"));
    EXPECT_THAT(Post("ask", R"({"operation":"video_broadcast.SetChannel","members":{}})"),
                HasSubstr("changes something"));
    EXPECT_THAT(Post("ask", R"({"operation":"channel","members":{}})"), HasSubstr("unknown operation"));
    EXPECT_THAT(Post("ask", R"({"operation":"channel.GetName","members":{"x":1}})"), HasSubstr("\"problem\""));
    EXPECT_THAT(Post("ask", R"({"operation":"channel.GetName","members":[]})"), HasSubstr("\"problem\""));
    EXPECT_THAT(Post("simulator", R"({"command":"zap next"})"), HasSubstr("no simulator in"));
    EXPECT_THAT(Post("simulator", R"({"command":"zap\nzap"})"), HasSubstr("not a command"));
}

TEST_F(Web, RedactsWhatThePlatformReplies) {
    const hbbtv::test::FakePlatform platform("service_plugin_to_hbbtv_local_system",
                                             R"({"ret":0,"serialNumber":"DE-118842"})");
    const std::string question = R"({"operation":"local_system.GetSerialNumber","members":{}})";
    EXPECT_THAT(Post("ask", question), HasSubstr(R"({"reply":{"ret":0,"serialNumber":"DE-118842"}})"));
    End();
    Serve({}, [](Record& record) { Redaction().Apply(record); });
    EXPECT_THAT(Post("ask", question), HasSubstr(R"({"reply":{"ret":0,"serialNumber":"redacted-1"}})"));
}

TEST_F(Web, ListensOnThisMachineOnly) {
    std::ifstream table("/proc/net/tcp");
    std::stringstream text;
    text << table.rdbuf();
    char number[8];
    std::snprintf(number, sizeof(number), ":%04X", static_cast<unsigned>(port));
    EXPECT_THAT(text.str(), HasSubstr("0100007F" + std::string(number) + " 00000000:0000 0A"));
    EXPECT_THAT(text.str(), Not(HasSubstr("00000000" + std::string(number) + " 00000000:0000 0A")));
}

TEST_F(Web, StreamsRecordsAndContinuesWhereAPageHasStopped) {
    session->Add(Numbered(1));
    session->Add(Numbered(2));
    Client page(port, Head("GET", path + "events"));
    EXPECT_THAT(page.Until("id: 2\n"), HasSubstr("id: 1\nevent: record\ndata: {\"code\":13,"));
    session->Add(Numbered(3));
    EXPECT_THAT(page.Until("id: 3\n"), HasSubstr("Content-Type: text/event-stream"));
    Client again(port, Head("GET", path + "events", "Last-Event-ID: 2\r\n"));
    EXPECT_THAT(again.Until("id: 3\n"), Not(HasSubstr("id: 2\n")));
    Client hostile(port, Head("GET", path + "events", "Last-Event-ID: 99999999999999999999\r\n"));
    EXPECT_THAT(hostile.Until("id: 3\n"), HasSubstr("id: 1\n"));
}

TEST_F(Web, ReportsWhatIsOpen) {
    End();
    Serve([] {
        Record record = GetName();
        record.time = TimeStamp(1, 1);
        return std::vector<Record>{record};
    });
    Client page(port, Head("GET", path + "events"));
    EXPECT_THAT(page.Until("\"oldest_us\""), HasSubstr("event: state\ndata: {\"oldest\":\"channel.GetName\""));
}

TEST_F(Web, ServesOthersWhileAPageDoesNotRead) {
    Client lazy(port, Head("GET", path + "events"));
    lazy.Until("retry");
    Record large = GetName(R"({"ret":0,"name":")" + std::string(200000, 'x') + "\"}");
    for (large.number = 1; large.number <= 60; ++large.number) session->Add(large);
    Client page(port, Head("GET", path + "events"));
    EXPECT_THAT(page.Until("id: 60\n"), HasSubstr("id: 60\n"));
    EXPECT_THAT(lazy.Until("id: 60\n"), HasSubstr("id: 60\n"));
}

TEST_F(Web, RefusesMoreConnectionsThanPagesNeedAndRecovers) {
    {
        std::vector<std::unique_ptr<Client>> many;
        for (int i = 0; i < 80; ++i) many.push_back(std::make_unique<Client>(port, "GET "));
        EXPECT_EQ(many.back()->ToTheEnd(), "");
    }
    EXPECT_TRUE(hbbtv::test::WaitFor([this] { return Get(path).rfind("HTTP/1.1 200 ", 0) == 0; }));
}

TEST_F(Web, RefusesAPortThatIsInUse) {
    try {
        WebSession second({directory.Path(), "", static_cast<uint16_t>(port), {}, {}});
        ADD_FAILURE() << "no failure";
    } catch (const Failure& e) {
        EXPECT_EQ(e.Code(), kUnavailable);
        EXPECT_EQ(e.what(), "cannot serve 127.0.0.1:" + std::to_string(port) + ": Address already in use");
    }
}

TEST(RecordRing, DropsTheOldestAndCountsThem) {
    RecordRing ring(5000);
    Record record = GetName();
    for (record.number = 1; record.number <= 100; ++record.number) ring.Add(record);
    const RecordRing::Part part = ring.After(0, 1 << 20);
    ASSERT_FALSE(part.lines.empty());
    EXPECT_LT(part.lines.size(), 20u);
    EXPECT_EQ(part.position, 100u);
    EXPECT_THAT(*part.lines.back(), HasSubstr("\"number\":100,"));
    EXPECT_EQ(part.missing, 100 - part.lines.size());
    EXPECT_EQ(ring.After(part.missing, 1 << 20).missing, 0u);
    EXPECT_EQ(ring.After(part.missing, 1 << 20).lines.size(), part.lines.size());
    EXPECT_EQ(ring.After(98, 1).lines.size(), 1u);
    EXPECT_EQ(ring.After(98, 1).position, 99u);
    EXPECT_TRUE(ring.After(100, 1 << 20).lines.empty());
    EXPECT_EQ(ring.After(100, 1 << 20).position, 100u);
    EXPECT_EQ(ring.After(UINT64_MAX / 2, 1 << 20).lines.size(), part.lines.size());
}

}  // namespace
}  // namespace hbbtv::traffic
