// Requests of browsers, and what pretends to be one.
#include "traffic/web/http_request.h"

#include <gtest/gtest.h>

namespace hbbtv::traffic {
namespace {

using State = HttpParser::State;

// Returns the status of a refusal, 0 for a complete request, or -1 for one that is not complete.
int Outcome(const std::string& bytes) {
    HttpParser parser;
    switch (parser.Take(bytes.data(), bytes.size())) {
        case State::Complete:
            return 0;
        case State::Incomplete:
            return -1;
        default:
            return parser.Refusal();
    }
}

std::string Post(const std::string& length, const std::string& body = "") {
    return "POST /t/ask HTTP/1.1\r\nHost: 127.0.0.1:80\r\nContent-Length: " + length + "\r\n\r\n" + body;
}

TEST(HttpParser, ReadsARequestInWhateverPartsItArrives) {
    const std::string bytes =
        "POST /t/ask?x=1 HTTP/1.1\r\nHost:127.0.0.1:80 \r\nContent-Length: 5\r\nX-Empty:\r\n\r\nhelloMORE";
    for (size_t part = 1; part <= bytes.size(); ++part) {
        HttpParser parser;
        State state = State::Incomplete;
        for (size_t at = 0; at < bytes.size(); at += part) {
            state = parser.Take(bytes.data() + at, std::min(part, bytes.size() - at));
        }
        ASSERT_EQ(state, State::Complete) << part;
        EXPECT_EQ(parser.Request().method, "POST");
        EXPECT_EQ(parser.Request().path, "/t/ask?x=1");
        EXPECT_EQ(parser.Request().Header("host"), "127.0.0.1:80");
        EXPECT_EQ(parser.Request().Header("x-empty"), "");
        EXPECT_EQ(parser.Request().body, "hello");
    }
}

TEST(HttpParser, WaitsForTheRest) {
    EXPECT_EQ(Outcome(""), -1);
    EXPECT_EQ(Outcome("GET / HTTP/1.1\r\n"), -1);
    EXPECT_EQ(Outcome("GET / HTTP/1.1\r\n\r"), -1);
    EXPECT_EQ(Outcome("GET / HTTP/1.1\r\n\r\n"), 0);
    EXPECT_EQ(Outcome(Post("5", "hell")), -1);
    EXPECT_EQ(Outcome(Post("5", "hello")), 0);
    EXPECT_EQ(Outcome(Post("0")), 0);
}

TEST(HttpParser, RefusesBodiesThatAreNotPlain) {
    EXPECT_EQ(Outcome("POST /t/ask HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n"), 501);
    EXPECT_EQ(Outcome("POST /t/ask HTTP/1.1\r\nTransfer-Encoding: identity\r\nContent-Length: 1\r\n\r\nx"), 501);
    EXPECT_EQ(Outcome("POST /t/ask HTTP/1.1\r\n\r\n"), 411);
    EXPECT_EQ(Outcome(Post("65537")), 413);
    EXPECT_EQ(Outcome(Post("99999999999999999999")), 413);
    EXPECT_EQ(Outcome(Post(std::to_string(kLargestBody), std::string(kLargestBody, 'x'))), 0);
    for (const char* length : {"-1", "+5", "0x5", "5,5", "5 5", "", "five"})
        EXPECT_EQ(Outcome(Post(length)), 400) << length;
    EXPECT_EQ(Outcome("POST /t/ask HTTP/1.1\r\nContent-Length: 5\r\ncontent-length: 6\r\n\r\n"), 400);
}

TEST(HttpParser, RefusesHeadsThatAreNotHttp) {
    for (const char* head :
         {"hello\r\n\r\n", "GET /\r\n\r\n", "GET  / HTTP/1.1\r\n\r\n", "GET / HTTP/1.1 \r\n\r\n",
          "GET http://a/ HTTP/1.1\r\n\r\n", "GET /\x01 HTTP/1.1\r\n\r\n", "G(T / HTTP/1.1\r\n\r\n",
          " / HTTP/1.1\r\n\r\n", "GET / HTTP/1.1\r\nHost\r\n\r\n", "GET / HTTP/1.1\r\nHost : a\r\n\r\n",
          "GET / HTTP/1.1\r\nA: b\r\n folded\r\n\r\n", "GET / HTTP/1.1\r\n: a\r\n\r\n",
          "GET / HTTP/1.1\r\nHost: a\r\nHost: b\r\n\r\n", "GET / HTTP/1.1\r\nA: b\x01\r\n\r\n",
          "GET / HTTP/1.1\r\nA: b\nC: d\r\n\r\n", "\r\n\r\n"}) {
        EXPECT_EQ(Outcome(head), 400) << head;
    }
    EXPECT_EQ(Outcome("GET / HTTP/2.0\r\n\r\n"), 505);
    EXPECT_EQ(Outcome(std::string("GET / HTTP/1.1\r\nA: \0\r\n\r\n", 24)), 400);
}

TEST(HttpParser, RefusesLongHeadsBeforeTheyEnd) {
    const std::string begin = "GET / HTTP/1.1\r\nA: ";
    EXPECT_EQ(Outcome(begin + std::string(kLongestHead - begin.size(), 'a')), -1);
    EXPECT_EQ(Outcome(begin + std::string(kLongestHead, 'a')), 431);
    EXPECT_EQ(Outcome(begin + std::string(kLongestHead, 'a') + "\r\n\r\n"), 431);
}

}  // namespace
}  // namespace hbbtv::traffic
