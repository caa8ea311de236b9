#include "written_json.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace hbbtv::test {

namespace {

class Scanner {
  public:
    explicit Scanner(const std::string& text) : mText(text) {}

    WrittenMembers Object() {
        WrittenMembers members;
        Expect('{');
        while (Next() != '}') {
            if (!members.empty()) Expect(',');
            const std::string key = Value();
            Expect(':');
            members.emplace_back(key.substr(1, key.size() - 2), Value());
        }
        return members;
    }

  private:
    char Next() {
        while (mAt < mText.size() && mText[mAt] == ' ') ++mAt;
        if (mAt == mText.size()) Fail();
        return mText[mAt];
    }

    void Expect(char c) {
        if (Next() != c) Fail();
        ++mAt;
    }

    // Up to the comma, colon or bracket that ends it.
    std::string Value() {
        Next();
        const size_t begin = mAt;
        int depth = 0;
        for (bool quoted = false; mAt < mText.size(); ++mAt) {
            const char c = mText[mAt];
            if (quoted) {
                if (c == '\\') ++mAt;
                quoted = c != '"';
            } else if (c == '"') {
                quoted = true;
            } else if (depth == 0 && (c == ',' || c == ':' || c == '}' || c == ' ')) {
                break;
            } else {
                depth += (c == '{' || c == '[') - (c == '}' || c == ']');
            }
        }
        return mText.substr(begin, mAt - begin);
    }

    [[noreturn]] void Fail() const {
        std::fprintf(stderr, "not written as an object: %s\n", mText.c_str());
        std::abort();
    }

    const std::string& mText;
    size_t mAt = 0;
};

}  // namespace

WrittenMembers MembersOf(const std::string& object) {
    return Scanner(object).Object();
}

std::string Styled(const std::string& object) {
    WrittenMembers members = MembersOf(object);
    std::sort(members.begin(), members.end());
    std::string text;
    for (const auto& [key, value] : members) {
        if (value[0] == '{' || value[0] == '[') {
            std::fprintf(stderr, "no scalar: %s\n", value.c_str());
            std::abort();
        }
        text += (text.empty() ? "\n\t\"" : ",\n\t\"") + key + "\" : " + value;
    }
    return text.empty() ? "{}\n" : "{" + text + "\n}\n";
}

std::string ObjectOf(const WrittenMembers& members) {
    std::string text;
    for (const auto& [key, value] : members) text += (text.empty() ? "\"" : ", \"") + key + "\": " + value;
    return "{" + text + "}";
}

std::string WithMember(const std::string& object, const std::string& key, const std::string& value) {
    WrittenMembers members = MembersOf(object);
    const auto member = std::find_if(members.begin(), members.end(), [&](const auto& m) { return m.first == key; });
    if (member == members.end()) {
        if (!value.empty()) members.emplace_back(key, value);
    } else if (value.empty()) {
        members.erase(member);
    } else {
        member->second = value;
    }
    return ObjectOf(members);
}

}  // namespace hbbtv::test
