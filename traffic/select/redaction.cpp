#include "traffic/select/redaction.h"

#include <algorithm>

namespace hbbtv::traffic {

namespace {

// Members that protocol/ has for what identifies a television.
constexpr const char* kIds[] = {"deviceID", "serialNumber", "serial"};

// Shorter ones are found everywhere.
constexpr size_t kShortestId = 5;
constexpr size_t kMostIds = 100;
constexpr size_t kMostReplacements = 100000;

constexpr const char* kRedacted = "redacted";

bool IsId(const std::string& key) {
    return std::find(std::begin(kIds), std::end(kIds), key) != std::end(kIds);
}

}  // namespace

std::string Redaction::Replacement(const std::string& secret) {
    const auto found = mReplacements.find(secret);
    if (found != mReplacements.end()) return found->second;
    if (mReplacements.size() >= kMostReplacements) return kRedacted;
    return mReplacements[secret] = kRedacted + ("-" + std::to_string(mReplacements.size() + 1));
}

std::string Redaction::WithoutIds(std::string text) const {
    for (const auto& [id, replacement] : mIds) {
        for (size_t at = text.find(id); at != std::string::npos; at = text.find(id, at + replacement.size())) {
            text.replace(at, id.size(), replacement);
        }
    }
    return text;
}

std::string Redaction::WithoutQueries(const std::string& text) {
    std::string result;
    size_t done = 0;
    for (size_t url = text.find("://"); url != std::string::npos; url = text.find("://", done)) {
        const size_t end = std::min(text.find_first_of(" \t\r\n\"'<>", url), text.size());
        const size_t query = std::min(text.find('?', url), end);
        const size_t queryEnd = std::min(text.find('#', query), end);
        result += text.substr(done, query - done);
        if (query + 1 < queryEnd) result += "?" + Replacement(text.substr(query + 1, queryEnd - query - 1));
        if (query + 1 == queryEnd) result += "?";
        done = queryEnd;
        // A fragment may have a secret of its own.
        if (queryEnd + 1 < end) result += "#" + Replacement(text.substr(queryEnd + 1, end - queryEnd - 1));
        done = end;
    }
    return result + text.substr(done);
}

void Redaction::Apply(Json::Value& value, const std::string& key) {
    if (value.isObject()) {
        for (const std::string& name : value.getMemberNames()) Apply(value[name], name);
    } else if (value.isArray()) {
        for (Json::Value& item : value) Apply(item, key);
    } else if (value.isString()) {
        const std::string text = value.asString();
        if (!IsId(key) || text.empty()) {
            value = WithoutQueries(WithoutIds(text));
            return;
        }
        const std::string replacement = Replacement(text);
        if (text.size() >= kShortestId && mIds.size() < kMostIds) mIds[text] = replacement;
        value = replacement;
    } else if (IsId(key) && !value.isNull()) {
        value = Replacement(value.asString());
    }
}

void Redaction::Apply(Message& message) {
    if (message.Readable()) {
        Apply(message.json, "");
    } else if (!message.raw.empty()) {
        message.raw = kRedacted;
    }
}

void Redaction::Apply(Record& record) {
    Apply(record.message);
    if (record.reply) Apply(*record.reply);
    record.note = WithoutQueries(WithoutIds(record.note));
    record.rule = WithoutQueries(WithoutIds(record.rule));
}

void Redaction::Apply(RecordingHead& head) {
    head.directory = kRedacted;
}

}  // namespace hbbtv::traffic
