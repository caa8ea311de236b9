#include "traffic/select/redaction.h"

#include <algorithm>

#include "traffic/view/members.h"

namespace hbbtv::traffic {

namespace {

// Shorter ones are found everywhere.
constexpr size_t kShortestId = 5;
constexpr size_t kMostIds = 100;
constexpr size_t kMostReplacements = 100000;

constexpr const char* kRedacted = "redacted";

bool IsUrlKey(const Record& record, const std::string& key) {
    return key.find("url") != std::string::npos || key.find("Url") != std::string::npos ||
           (record.operation == "OnTabURLChanged" && key == "title");
}

}  // namespace

// Returns 0 if there are too many.
size_t Redaction::NumberOf(const std::string& secret) {
    const auto found = mNumbers.find(secret);
    if (found != mNumbers.end()) return found->second;
    if (mNumbers.size() >= kMostReplacements) return 0;
    const size_t number = mNumbers.size() + 1;
    return mNumbers[secret] = number;
}

std::string Redaction::Replacement(const std::string& secret) {
    const size_t number = NumberOf(secret);
    return number == 0 ? kRedacted : kRedacted + ("-" + std::to_string(number));
}

std::string Redaction::WithoutIds(std::string text) const {
    for (const auto& [id, replacement] : mIds) {
        for (size_t at = text.find(id); at != std::string::npos; at = text.find(id, at + replacement.size())) {
            text.replace(at, id.size(), replacement);
        }
    }
    return text;
}

// Of a URL from the end of its authority on. A fragment may have a secret of its own.
std::string Redaction::WithoutQuery(const std::string& url) {
    const size_t query = std::min(url.find('?'), url.find('#'));
    if (query == std::string::npos) return url;
    const size_t fragment = std::min(url.find('#', query), url.size());
    std::string result = url.substr(0, query);
    if (fragment > query) result += "?";
    if (fragment > query + 1) result += Replacement(url.substr(query + 1, fragment - query - 1));
    if (fragment < url.size()) result += "#";
    return fragment + 1 < url.size() ? result + Replacement(url.substr(fragment + 1)) : result;
}

std::string Redaction::WithoutQueries(const std::string& text) {
    std::string result;
    size_t done = 0;
    for (size_t url = text.find("://"); url != std::string::npos; url = text.find("://", done)) {
        const size_t end = std::min(text.find_first_of(" \t\r\n\"'<>", url), text.size());
        const size_t authority = url + 3;
        const size_t authorityEnd = std::min(text.find_first_of("/?#", authority), end);
        const size_t user = text.substr(authority, authorityEnd - authority).rfind('@');
        result += text.substr(done, authority - done);
        size_t rest = authority;
        if (user != std::string::npos && user > 0) {
            result += Replacement(text.substr(authority, user));
            rest += user;
        }
        result += WithoutQuery(text.substr(rest, end - rest));
        done = end;
    }
    return result + text.substr(done);
}

// A member that is private is so with all that is in it.
void Redaction::Apply(Json::Value& value, Privacy privacy, bool isUrl) {
    if (value.isObject() || value.isArray()) {
        for (Json::Value& item : value) Apply(item, privacy, isUrl);
        return;
    }
    const bool isPrivate = privacy == Privacy::Identifier || privacy == Privacy::Personal;
    if (!value.isString()) {
        if (isPrivate && value.isNumeric()) value = static_cast<Json::UInt64>(NumberOf(value.asString()));
        return;
    }
    const std::string text = value.asString();
    const bool isUnknown = privacy == Privacy::Unknown && !HandleIn(value);
    if (text.empty() || (!isPrivate && !isUnknown)) {
        const std::string known = WithoutQueries(WithoutIds(text));
        value = isUrl && known.find("://") == std::string::npos ? WithoutQuery(known) : known;
        return;
    }
    const std::string replacement = Replacement(text);
    if (privacy == Privacy::Identifier && text.size() >= kShortestId && mIds.size() < kMostIds) {
        mIds[text] = replacement;
    }
    value = replacement;
}

void Redaction::Apply(const Record& record, Message& message, bool isReply) {
    if (!message.Readable()) {
        if (!message.raw.empty()) message.raw = kRedacted;
        return;
    }
    if (!message.json.isObject()) return Apply(message.json, Privacy::Unknown, false);
    for (const std::string& key : message.json.getMemberNames()) {
        Apply(message.json[key], PrivacyOf(record, isReply, key), IsUrlKey(record, key));
    }
}

void Redaction::Apply(Record& record) {
    Apply(record, record.message, false);
    if (record.reply) Apply(record, *record.reply, true);
    record.note = WithoutQueries(WithoutIds(record.note));
    record.rule = WithoutQueries(WithoutIds(record.rule));
}

void Redaction::Apply(RecordingHead& head) {
    head.directory = kRedacted;
}

}  // namespace hbbtv::traffic
