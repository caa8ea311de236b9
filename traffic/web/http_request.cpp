#include "traffic/web/http_request.h"

#include <algorithm>
#include <cstdint>

namespace hbbtv::traffic {

namespace {

const char* const kEndOfHead = "\r\n\r\n";

bool IsTokenCharacter(char c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    return letter || (c >= '0' && c <= '9') ||
           (c != '\0' && std::string("!#$%&'*+-.^_`|~").find(c) != std::string::npos);
}

bool IsToken(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsTokenCharacter);
}

bool IsVisible(char c) {
    return c > ' ' && c < '\x7f';
}

bool IsValueCharacter(char c) {
    return c == '\t' || (static_cast<unsigned char>(c) >= ' ' && c != '\x7f');
}

std::string LowerCaseName(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

std::string Trimmed(const std::string& text) {
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

}  // namespace

std::string HttpRequest::Header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
}

HttpParser::State HttpParser::Take(const char* bytes, size_t count) {
    if (mState != State::Incomplete) return mState;
    mBytes.append(bytes, count);
    mState = mHeadRead ? TakeBody() : TakeHead();
    return mState;
}

HttpParser::State HttpParser::Refuse(int status) {
    mRefusal = status;
    mBytes.clear();
    return State::Refused;
}

HttpParser::State HttpParser::TakeHead() {
    const size_t end = mBytes.find(kEndOfHead, mScanned);
    if (std::min(end, mBytes.size()) > kLongestHead) return Refuse(431);
    if (end == std::string::npos) {
        mScanned = mBytes.size() < 3 ? 0 : mBytes.size() - 3;
        return State::Incomplete;
    }
    const std::string head = mBytes.substr(0, end + 2);
    mBytes.erase(0, end + 4);
    size_t begin = head.find("\r\n") + 2;
    if (!ReadRequestLine(head.substr(0, begin - 2))) return Refuse(mRefusal == 0 ? 400 : mRefusal);
    while (begin < head.size()) {
        const size_t next = head.find("\r\n", begin);
        if (!ReadHeader(head.substr(begin, next - begin))) return Refuse(400);
        begin = next + 2;
    }
    const int problem = BodyProblem();
    if (problem != 0) return Refuse(problem);
    mHeadRead = true;
    return TakeBody();
}

bool HttpParser::ReadRequestLine(const std::string& line) {
    const size_t method = line.find(' ');
    const size_t path = method == std::string::npos ? method : line.find(' ', method + 1);
    if (path == std::string::npos) return false;
    mRequest.method = line.substr(0, method);
    mRequest.path = line.substr(method + 1, path - method - 1);
    const std::string version = line.substr(path + 1);
    if (!IsToken(mRequest.method) || mRequest.path.empty() || mRequest.path[0] != '/') return false;
    if (!std::all_of(mRequest.path.begin(), mRequest.path.end(), IsVisible)) return false;
    if (version == "HTTP/1.1" || version == "HTTP/1.0") return true;
    if (version.size() == 8 && version.compare(0, 5, "HTTP/") == 0) mRefusal = 505;
    return false;
}

// A header that is there twice could mean different things to different readers.
bool HttpParser::ReadHeader(const std::string& line) {
    const size_t colon = line.find(':');
    if (colon == std::string::npos || !IsToken(line.substr(0, colon))) return false;
    const std::string value = Trimmed(line.substr(colon + 1));
    if (!std::all_of(value.begin(), value.end(), IsValueCharacter)) return false;
    return mRequest.headers.emplace(LowerCaseName(line.substr(0, colon)), value).second;
}

int HttpParser::BodyProblem() {
    if (mRequest.headers.count("transfer-encoding") > 0) return 501;
    const auto length = mRequest.headers.find("content-length");
    if (length == mRequest.headers.end()) return mRequest.method == "POST" ? 411 : 0;
    const std::string& digits = length->second;
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) return 400;
    if (digits.size() > 9) return 413;
    mBodySize = std::stoul(digits);
    return mBodySize > kLargestBody ? 413 : 0;
}

HttpParser::State HttpParser::TakeBody() {
    if (mBytes.size() < mBodySize) return State::Incomplete;
    mRequest.body = mBytes.substr(0, mBodySize);
    mBytes.clear();
    return State::Complete;
}

}  // namespace hbbtv::traffic
