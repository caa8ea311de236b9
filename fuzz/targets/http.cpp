// The bytes of a browser, or of what pretends to be one, on the port of the live page: in whatever parts they arrive,
// they mean the same, and nothing is kept of what is too long.
#include "traffic/web/http_request.h"

#include <algorithm>

#include "input.h"

namespace hbbtv::fuzz {

namespace {

using traffic::HttpParser;

HttpParser::State TakeInParts(HttpParser& parser, const std::string& bytes, size_t part) {
    HttpParser::State state = HttpParser::State::Incomplete;
    for (size_t at = 0; at < bytes.size(); at += part) {
        state = parser.Take(bytes.data() + at, std::min(part, bytes.size() - at));
    }
    return state;
}

void CheckAlike(const HttpParser& one, const HttpParser& other) {
    FUZZ_CHECK(one.Refusal() == other.Refusal());
    FUZZ_CHECK(one.Request().method == other.Request().method);
    FUZZ_CHECK(one.Request().path == other.Request().path);
    FUZZ_CHECK(one.Request().headers == other.Request().headers);
    FUZZ_CHECK(one.Request().body == other.Request().body);
}

void CheckComplete(const traffic::HttpRequest& request, const std::string& bytes) {
    FUZZ_CHECK(request.body.size() <= traffic::kLargestBody);
    FUZZ_CHECK(bytes.find(request.body) != std::string::npos);
    FUZZ_CHECK(!request.path.empty() && request.path[0] == '/');
    FUZZ_CHECK(request.method + request.path + request.Header("host") ==
               std::string((request.method + request.path + request.Header("host")).c_str()));
    FUZZ_CHECK(request.headers.count("transfer-encoding") == 0);
    // A request that is complete is the same whatever follows it.
    HttpParser longer;
    const std::string more = bytes + "POST / HTTP/1.1\r\n\r\n";
    FUZZ_CHECK(longer.Take(more.data(), more.size()) == HttpParser::State::Complete);
    FUZZ_CHECK(longer.Request().body == request.body && longer.Request().headers == request.headers);
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using hbbtv::traffic::HttpParser;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    HttpParser whole;
    const HttpParser::State state = whole.Take(bytes.data(), bytes.size());
    for (const size_t part : {size_t{1}, size_t{7}, size_t{4096}}) {
        HttpParser parts;
        FUZZ_CHECK(hbbtv::fuzz::TakeInParts(parts, bytes, part) ==
                   (bytes.empty() ? HttpParser::State::Incomplete : state));
        hbbtv::fuzz::CheckAlike(parts, whole);
    }
    FUZZ_CHECK((state == HttpParser::State::Refused) == (whole.Refusal() != 0));
    if (state == HttpParser::State::Complete) hbbtv::fuzz::CheckComplete(whole.Request(), bytes);
    return 0;
}
