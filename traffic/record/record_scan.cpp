#include "traffic/record/record_scan.h"

#include <cctype>
#include <charconv>
#include <cstring>

#include "common/text/json.h"
#include "traffic/record/base64.h"

namespace hbbtv::traffic {

namespace {

constexpr int kDeepest = kDeepestJson + 8;

// Each function moves past what it reads, and returns false at anything else.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : mAt(text.data()), mEnd(text.data() + text.size()) {}

    bool AtEnd() {
        SkipBlanks();
        return mAt == mEnd;
    }

    // Calls `read` with each key; it reads the value.
    template <typename Read>
    bool Members(Read read) {
        if (!Take('{')) return false;
        if (Take('}')) return true;
        do {
            std::string_view key;
            if (!Plain(key) || !Take(':') || !read(key)) return false;
        } while (Take(','));
        return Take('}');
    }

    // A string without escapes.
    bool Plain(std::string_view& text) {
        if (!Take('"')) return false;
        const char* const begin = mAt;
        while (mAt != mEnd && *mAt != '"' && *mAt != '\\' && static_cast<unsigned char>(*mAt) >= 0x20) ++mAt;
        if (mAt == mEnd || *mAt != '"') return false;
        text = {begin, static_cast<size_t>(mAt++ - begin)};
        return true;
    }

    bool Text(std::string& text) {
        std::string_view plain;
        if (!Plain(plain)) return false;
        text = plain;
        return true;
    }

    template <typename Integer>
    bool Number(Integer& number) {
        SkipBlanks();
        const char* const begin = mAt;
        if (!IsNumber()) return false;
        const auto [end, error] = std::from_chars(begin, mAt, number);
        return error == std::errc() && end == mAt;
    }

    template <typename Integer>
    bool Number(std::optional<Integer>& number) {
        return Number(number.emplace());
    }

    bool Flag(bool& flag) {
        flag = Word("true");
        return flag || Word("false");
    }

    // Any value, whose text is returned.
    bool Value(std::string_view& text) {
        SkipBlanks();
        const char* const begin = mAt;
        if (!SkipValue(0)) return false;
        text = {begin, static_cast<size_t>(mAt - begin)};
        return true;
    }

  private:
    void SkipBlanks() {
        while (mAt != mEnd && (*mAt == ' ' || *mAt == '\t' || *mAt == '\r' || *mAt == '\n')) ++mAt;
    }

    bool Take(char c) {
        SkipBlanks();
        if (mAt == mEnd || *mAt != c) return false;
        ++mAt;
        return true;
    }

    bool Word(std::string_view word) {
        SkipBlanks();
        if (static_cast<size_t>(mEnd - mAt) < word.size() || std::memcmp(mAt, word.data(), word.size()) != 0)
            return false;
        mAt += word.size();
        return true;
    }

    bool Digits() {
        const char* const begin = mAt;
        while (mAt != mEnd && *mAt >= '0' && *mAt <= '9') ++mAt;
        return mAt != begin;
    }

    bool IsNumber() {
        if (mAt != mEnd && *mAt == '-') ++mAt;
        const char* const first = mAt;
        if (!Digits() || (*first == '0' && mAt != first + 1)) return false;
        if (mAt != mEnd && *mAt == '.') {
            ++mAt;
            if (!Digits()) return false;
        }
        if (mAt == mEnd || (*mAt != 'e' && *mAt != 'E')) return true;
        ++mAt;
        if (mAt != mEnd && (*mAt == '+' || *mAt == '-')) ++mAt;
        return Digits();
    }

    bool SkipEscape() {
        if (mAt == mEnd) return false;
        const char c = *mAt++;
        if (c != 'u') return std::strchr("\"\\/bfnrt", c) != nullptr && c != '\0';
        for (int i = 0; i < 4; ++i, ++mAt) {
            if (mAt == mEnd || std::isxdigit(static_cast<unsigned char>(*mAt)) == 0) return false;
        }
        return true;
    }

    bool SkipString() {
        if (!Take('"')) return false;
        while (mAt != mEnd && static_cast<unsigned char>(*mAt) >= 0x20) {
            const char c = *mAt++;
            if (c == '"') return true;
            if (c == '\\' && !SkipEscape()) return false;
        }
        return false;
    }

    bool SkipItems(char last, bool named, int depth) {
        ++mAt;
        if (Take(last)) return true;
        do {
            if (named && (!SkipString() || !Take(':'))) return false;
            if (!SkipValue(depth + 1)) return false;
        } while (Take(','));
        return Take(last);
    }

    bool SkipValue(int depth) {
        SkipBlanks();
        if (mAt == mEnd || depth >= kDeepest) return false;
        switch (*mAt) {
            case '{':
                return SkipItems('}', true, depth);
            case '[':
                return SkipItems(']', false, depth);
            case '"':
                return SkipString();
            case 't':
                return Word("true");
            case 'f':
                return Word("false");
            case 'n':
                return Word("null");
            default:
                return IsNumber();
        }
    }

    const char* mAt;
    const char* const mEnd;
};

// Sees to it that a key is not read twice.
class Keys {
  public:
    // Returns the place of the key among the known ones; -1 if it is unknown, -2 if it was there before.
    template <size_t Size>
    int Find(const std::string_view (&known)[Size], std::string_view key) {
        for (size_t i = 0; i < Size; ++i) {
            if (known[i] != key) continue;
            const bool twice = (mSeen >> i & 1) != 0;
            mSeen |= 1u << i;
            return twice ? -2 : static_cast<int>(i);
        }
        return -1;
    }

    bool Seen(size_t i) const { return (mSeen >> i & 1) != 0; }

  private:
    uint32_t mSeen = 0;
};

bool ScanPeer(Scanner& scanner, Peer& peer) {
    static constexpr std::string_view kKeys[] = {"pid", "uid", "name"};
    Keys keys;
    return scanner.Members([&](std::string_view key) {
        switch (keys.Find(kKeys, key)) {
            case 0:
                return scanner.Number(peer.pid);
            case 1:
                return scanner.Number(peer.uid);
            case 2:
                return scanner.Text(peer.name);
            default:
                return false;
        }
    });
}

bool ReadPayload(std::string_view text, Payloads payloads, Message& message) {
    if (text[0] != '{') return false;
    if (payloads == Payloads::Skipped) {
        message.json = Json::Value(Json::objectValue);
        return true;
    }
    try {
        message.json = ParseJson(std::string(text));
        return true;
    } catch (const BadJson&) {
        return false;
    }
}

bool ScanMessage(Scanner& scanner, Payloads payloads, Message& message) {
    static constexpr std::string_view kKeys[] = {"type", "port", "size", "json"};
    Keys keys;
    const bool read = scanner.Members([&](std::string_view key) {
        std::string_view payload;
        switch (keys.Find(kKeys, key)) {
            case 0:
                return scanner.Number(message.type);
            case 1:
                return scanner.Number(message.port);
            case 2:
                return scanner.Number(message.size);
            case 3:
                return scanner.Value(payload) && ReadPayload(payload, payloads, message);
            default:
                return false;
        }
    });
    return read && keys.Seen(3);
}

// In the order of kFields.
bool ScanField(Scanner& scanner, int field, Payloads payloads, Record& record, uint64_t (&times)[2]) {
    std::string kind;
    switch (field) {
        case 0:
            return scanner.Number(record.number);
        case 1:
            return scanner.Text(kind) && kind == NameOf(Record::Kind::Exchange);
        case 2:
            return scanner.Number(times[0]);
        case 3:
            return scanner.Number(times[1]);
        case 4:
            return scanner.Number(record.connection);
        case 5:
            return scanner.Text(record.socket);
        case 6:
            return scanner.Text(record.family);
        case 7:
            return scanner.Flag(record.event);
        case 8:
            return scanner.Text(record.operation);
        case 9:
            return scanner.Number(record.code);
        case 10:
            return ScanMessage(scanner, payloads, record.message);
        case 11:
            return ScanMessage(scanner, payloads, record.reply.emplace());
        case 12:
            return scanner.Number(record.duration);
        case 13:
            return scanner.Number(record.status);
        case 14:
            return scanner.Flag(record.open);
        case 15:
            return ScanPeer(scanner, record.library);
        case 16:
            return ScanPeer(scanner, record.platform);
        case 17:
            return scanner.Text(record.rule);
        case 18:
            return scanner.Text(record.note);
        default:
            return false;
    }
}

constexpr std::string_view kFields[] = {"number",  "kind",     "wall_us",     "monotonic_us", "connection",
                                        "socket",  "family",   "event",       "operation",    "code",
                                        "message", "reply",    "duration_us", "status",       "open",
                                        "library", "platform", "rule",        "note"};

}  // namespace

std::optional<Record> ScanRecord(std::string_view line, Payloads payloads) {
    std::optional<Record> record(std::in_place);
    Scanner scanner(line);
    Keys keys;
    uint64_t times[2]{};
    const bool read = scanner.Members(
        [&](std::string_view key) { return ScanField(scanner, keys.Find(kFields, key), payloads, *record, times); });
    const bool whole = read && scanner.AtEnd() && keys.Seen(0) && keys.Seen(1) && keys.Seen(2) && keys.Seen(3);
    if (!whole) return std::nullopt;
    record->time = TimeStamp(times[0], times[1]);
    return record;
}

}  // namespace hbbtv::traffic
