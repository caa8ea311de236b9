#include "ipc/src/tolm_member.h"

#include <json/json.h>

#include <algorithm>
#include <cstring>

#include "ipc/src/tolm_hbbtv_ipc_tools.h"
#include "ipc/src/tolm_json_text.h"

namespace tolm {

namespace {

// Most requests need no more.
constexpr size_t kUsualText = 256;
constexpr size_t kUsualMembers = 12;

Member MemberOf(const char* key, Member::Kind kind) {
    Member member{};
    member.key = key;
    member.kind = kind;
    return member;
}

bool IsPlain(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < 0x7f && c != '"' && c != '\\'; });
}

void AppendValue(std::string& to, const Json::String& number) {
    to.append(number.data(), number.size());
}

void AppendValue(std::string& to, int value) {
    AppendValue(to, Json::valueToString(Json::LargestInt{value}));
}

void AppendValue(std::string& to, unsigned value) {
    AppendValue(to, Json::valueToString(Json::LargestUInt{value}));
}

void AppendValue(std::string& to, bool value) {
    to += value ? "true" : "false";
}

void AppendValue(std::string& to, double value) {
    AppendValue(to, Json::valueToString(value));
}

void AppendText(std::string& to, const std::string& text) {
    if (IsPlain(text)) {
        to += '"';
        to += text;
        to += '"';
        return;
    }
    const std::vector<unsigned char> quoted = ToStyledBytes(text);  // with a line break
    to.append(quoted.begin(), quoted.end() - 1);
}

void AppendValue(std::string& to, const void* pointer) {
    to += '"';
    TolmHbbtvIpcTools::AppendPointer(pointer, to);
    to += '"';
}

void AppendValue(std::string& to, const std::vector<std::string>& elements) {
    if (elements.empty()) {
        to += "null";
        return;
    }
    const char* before = "\n\t[\n\t\t";
    for (const std::string& element : elements) {
        to += before;
        to += element;
        before = ",\n\t\t";
    }
    to += "\n\t]";
}

// Copies text to where there is room for it, and returns the end of the copy.
template <typename Byte>
Byte* Copy(std::string_view text, Byte* to) {
    memcpy(to, text.data(), text.size());
    return to + text.size();
}

}  // namespace

Member Int(const char* key, int value) {
    Member member = MemberOf(key, Member::Kind::kInt);
    member.asInt = value;
    return member;
}

Member UInt(const char* key, unsigned value) {
    Member member = MemberOf(key, Member::Kind::kUInt);
    member.asUInt = value;
    return member;
}

Member Bool(const char* key, bool value) {
    Member member = MemberOf(key, Member::Kind::kBool);
    member.asBool = value;
    return member;
}

Member Real(const char* key, double value) {
    Member member = MemberOf(key, Member::Kind::kReal);
    member.asReal = value;
    return member;
}

Member Text(const char* key, const std::string& value) {
    Member member = MemberOf(key, Member::Kind::kText);
    member.asText = &value;
    return member;
}

Member Pointer(const char* key, const void* value) {
    Member member = MemberOf(key, Member::Kind::kPointer);
    member.asPointer = value;
    return member;
}

Member NumberedInts(const std::vector<int>& values) {
    Member member = MemberOf("k", Member::Kind::kNumberedInts);
    member.asInts = &values;
    return member;
}

Member NumberedPointers(const char* key, const std::vector<void*>& values) {
    Member member = MemberOf(key, Member::Kind::kNumberedPointers);
    member.asPointers = &values;
    return member;
}

Member Array(const char* key, const std::vector<std::string>& elements) {
    Member member = MemberOf(key, Member::Kind::kArray);
    member.asElements = &elements;
    return member;
}

std::string NumberedKey(size_t index) {
    return ("k" + std::to_string(index)).substr(0, 3);
}

ObjectText::ObjectText() {
    mText.reserve(kUsualText);
    mEntries.reserve(kUsualMembers);
}

void ObjectText::Add(const Member& member) {
    const std::string_view key(member.key);
    size_t index = 0;
    switch (member.kind) {
        case Member::Kind::kInt:
            return AddValue(key, member.asInt);
        case Member::Kind::kUInt:
            return AddValue(key, member.asUInt);
        case Member::Kind::kBool:
            return AddValue(key, member.asBool);
        case Member::Kind::kReal:
            return AddValue(key, member.asReal);
        case Member::Kind::kText:
            BeginEntry(key);
            AppendText(mText, *member.asText);
            return EndEntry();
        case Member::Kind::kPointer:
            return AddValue(key, member.asPointer);
        case Member::Kind::kNumberedInts:
            for (const int value : *member.asInts) AddValue(NumberedKey(index++), value);
            return;
        case Member::Kind::kNumberedPointers:
            for (const void* value : *member.asPointers) AddValue(member.key + std::to_string(index++), value);
            return;
        case Member::Kind::kArray:
            return AddValue(key, *member.asElements);
    }
}

template <typename Value>
void ObjectText::AddValue(std::string_view key, const Value& value) {
    BeginEntry(key);
    AppendValue(mText, value);
    EndEntry();
}

void ObjectText::BeginEntry(std::string_view key) {
    mEntries.push_back({mText.size(), key.size(), 0});
    mText += '"';
    mText += key;
    mText += "\" : ";
}

void ObjectText::EndEntry() {
    mEntries.back().end = mText.size();
}

std::string_view ObjectText::KeyOf(const Entry& entry) const {
    return std::string_view(mText).substr(entry.begin + 1, entry.keySize);
}

// Members with the same key stay in the order in which they were added.
void ObjectText::Sort() {
    std::sort(mEntries.begin(), mEntries.end(), [this](const Entry& a, const Entry& b) {
        const int order = KeyOf(a).compare(KeyOf(b));
        return order != 0 ? order < 0 : a.begin < b.begin;
    });
}

template <typename Bytes>
Bytes ObjectText::Joined(size_t depth, std::string_view end) {
    Sort();
    const std::string indent = "\n" + std::string(depth + 1, '\t');
    const std::string_view text(mText);
    Bytes bytes(2 + mText.size() + mEntries.size() * (indent.size() + 1) + indent.size() + end.size(), '\0');
    auto* next = Copy("{", bytes.data());
    for (size_t i = 0; i < mEntries.size(); ++i) {
        const Entry& entry = mEntries[i];
        const bool isLast = i + 1 == mEntries.size();
        if (!isLast && KeyOf(mEntries[i + 1]) == KeyOf(entry)) continue;
        next = Copy(indent, next);
        next = Copy(text.substr(entry.begin, entry.end - entry.begin), next);
        if (!isLast) next = Copy(",", next);
    }
    if (!mEntries.empty()) next = Copy(std::string_view(indent).substr(0, indent.size() - 1), next);
    next = Copy("}", next);
    next = Copy(end, next);
    bytes.resize(static_cast<size_t>(next - bytes.data()));
    return bytes;
}

std::string ObjectText::AsElement() {
    return Joined<std::string>(2, "");
}

std::vector<unsigned char> ObjectText::AsDocument() {
    return Joined<std::vector<unsigned char>>(0, "\n");
}

std::string Element(std::initializer_list<Member> members) {
    ObjectText object;
    for (const Member& member : members) object.Add(member);
    return object.AsElement();
}

}  // namespace tolm
