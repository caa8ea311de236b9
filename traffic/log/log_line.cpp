#include "traffic/log/log_line.h"

#include <cctype>
#include <cstring>

namespace hbbtv::traffic {

namespace {

constexpr const char* kPriorities = "VDIWEFSA";

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads a line from its beginning. Each function returns false, and may have moved, at anything else.
class Cursor {
  public:
    explicit Cursor(std::string_view text) : mRest(text) {}

    std::string_view Rest() const { return mRest; }

    void SkipBlanks() {
        while (!mRest.empty() && mRest[0] == ' ') mRest.remove_prefix(1);
    }

    bool Take(char c) {
        if (mRest.empty() || mRest[0] != c) return false;
        mRest.remove_prefix(1);
        return true;
    }

    bool Blank() {
        if (!Take(' ')) return false;
        SkipBlanks();
        return true;
    }

    // A number of at least `least` and at most 18 digits.
    bool Number(uint64_t& number, size_t least = 1, size_t* digits = nullptr) {
        size_t count = 0;
        number = 0;
        while (count < mRest.size() && count < 18 && IsDigit(mRest[count])) {
            number = number * 10 + static_cast<uint64_t>(mRest[count++] - '0');
        }
        mRest.remove_prefix(count);
        if (digits != nullptr) *digits = count;
        return count >= least;
    }

    bool Number(int& number) {
        uint64_t value = 0;
        if (!Number(value) || value > 99999999) return false;
        number = static_cast<int>(value);
        return true;
    }

    bool Priority(char& priority) {
        if (mRest.empty() || std::strchr(kPriorities, mRest[0]) == nullptr) return false;
        priority = mRest[0];
        mRest.remove_prefix(1);
        return true;
    }

    // Everything up to a separator, which is taken, too. Blanks at its end, which align it, are left out.
    bool Until(std::string_view separator, std::string& text) {
        const size_t end = mRest.find(separator);
        if (end == std::string_view::npos) return false;
        text = mRest.substr(0, end);
        while (!text.empty() && text.back() == ' ') text.pop_back();
        mRest.remove_prefix(end + separator.size());
        return true;
    }

  private:
    std::string_view mRest;
};

// ".458", ".458629" or ".458629123".
bool Fraction(Cursor& at, uint64_t& microseconds) {
    if (!at.Take('.')) return false;
    size_t digits = 0;
    if (!at.Number(microseconds, 1, &digits)) return false;
    for (; digits < 6; ++digits) microseconds *= 10;
    for (; digits > 6; --digits) microseconds /= 10;
    return true;
}

bool TimeOfDay(Cursor& at, uint64_t& microseconds) {
    uint64_t hours = 0;
    uint64_t minutes = 0;
    uint64_t seconds = 0;
    uint64_t fraction = 0;
    if (!at.Number(hours, 2) || !at.Take(':') || !at.Number(minutes, 2) || !at.Take(':') || !at.Number(seconds, 2) ||
        !Fraction(at, fraction) || hours > 23 || minutes > 59 || seconds > 60) {
        return false;
    }
    microseconds = (hours * 3600 + minutes * 60 + seconds) * 1000000 + fraction;
    return true;
}

// " +0100"
void Zone(Cursor& at, std::string& zone) {
    Cursor next = at;
    uint64_t number = 0;
    size_t digits = 0;
    if (!next.Take(' ')) return;
    const bool west = next.Take('-');
    if (!west && !next.Take('+')) return;
    if (!next.Number(number, 4, &digits) || digits != 4 || number / 100 > 23 || number % 100 > 59) return;
    const std::string text = std::to_string(10000 + number);
    zone = (west ? "-" : "+") + text.substr(1, 2) + ":" + text.substr(3);
    at = next;
}

bool Date(Cursor& at, LogTime& time) {
    uint64_t first = 0;
    uint64_t second = 0;
    size_t digits = 0;
    if (!at.Number(first, 2, &digits) || !at.Take('-') || !at.Number(second, 2)) return false;
    if (digits == 4) {
        uint64_t day = 0;
        if (!at.Take('-') || !at.Number(day, 2) || first < 1970 || first > 2200) return false;
        time.year = static_cast<int>(first);
        first = second;
        second = day;
    }
    if (first < 1 || first > 12 || second < 1 || second > 31) return false;
    time.month = static_cast<int>(first);
    time.day = static_cast<int>(second);
    return true;
}

bool Time(Cursor& at, std::optional<LogTime>& result) {
    Cursor dated = at;
    LogTime time;
    if (Date(dated, time) && dated.Blank() && TimeOfDay(dated, time.microseconds)) {
        Zone(dated, time.zone);
        at = dated;
        result = time;
        return true;
    }
    LogTime seconds;
    at.SkipBlanks();
    uint64_t whole = 0;
    if (!at.Number(whole) || whole > 10000000000 || !Fraction(at, seconds.microseconds)) return false;
    seconds.microseconds += whole * 1000000;
    result = seconds;
    return true;
}

// "  4711  4712 D [ipc_base]: text", with a user before the process if logcat was asked for it.
bool ThreadTime(Cursor at, LogLine& line) {
    if (!Time(at, line.time) || !at.Blank()) return false;
    Cursor afterUser = at;
    std::string user;
    if (!(at.Number(line.pid) && at.Blank() && at.Number(line.tid) && at.Blank() && at.Priority(line.priority) &&
          at.Take(' '))) {
        at = afterUser;
        if (!at.Until(" ", user)) return false;
        at.SkipBlanks();
        if (!(at.Number(line.pid) && at.Blank() && at.Number(line.tid) && at.Blank() && at.Priority(line.priority) &&
              at.Take(' '))) {
            return false;
        }
    }
    if (!at.Until(": ", line.tag)) return false;
    line.text = at.Rest();
    return true;
}

// "D/[ipc_base]( 4711): text", with or without a time.
bool Brief(Cursor at, bool timed, LogLine& line) {
    if (timed && (!Time(at, line.time) || !at.Blank())) return false;
    if (!at.Priority(line.priority) || !at.Take('/') || !at.Until("(", line.tag)) return false;
    at.SkipBlanks();
    if (!at.Number(line.pid) || !at.Take(')') || !at.Take(':') || !at.Take(' ')) return false;
    line.text = at.Rest();
    return true;
}

// "D( 4711: 4712) text", or "D( 4711) text  ([ipc_base])"
bool Process(Cursor at, LogLine& line) {
    if (!at.Priority(line.priority) || !at.Take('(')) return false;
    at.SkipBlanks();
    if (!at.Number(line.pid)) return false;
    const bool threaded = at.Take(':');
    at.SkipBlanks();
    if (threaded && !at.Number(line.tid)) return false;
    if (!at.Take(')') || !at.Take(' ')) return false;
    line.text = at.Rest();
    const size_t tag = line.text.rfind("  (");
    if (threaded || tag == std::string::npos || line.text.back() != ')') return threaded;
    line.tag = line.text.substr(tag + 3, line.text.size() - tag - 4);
    line.text.resize(tag);
    return true;
}

// "D/[ipc_base]: text"
bool Tag(Cursor at, LogLine& line) {
    if (!at.Priority(line.priority) || !at.Take('/') || !at.Until(": ", line.tag)) return false;
    line.text = at.Rest();
    return true;
}

// "[ipc_base] D 11-22 12:47:25.458  4711  4712 text"
bool Host(Cursor at, LogLine& line) {
    if (!at.Until(" ", line.tag) || !at.Priority(line.priority) || !at.Blank() || !Time(at, line.time)) return false;
    if (line.time->month == 0 || !at.Blank() || !at.Number(line.pid) || !at.Blank() || !at.Number(line.tid))
        return false;
    if (!at.Take(' ')) return false;
    line.text = at.Rest();
    return true;
}

// "[ 11-22 12:47:25.458  4711: 4712 D/[ipc_base] ]"
bool LongHead(Cursor at, LogLine& line) {
    if (!at.Take('[') || !at.Blank() || !Time(at, line.time) || !at.Blank() || !at.Number(line.pid) || !at.Take(':')) {
        return false;
    }
    at.SkipBlanks();
    return at.Number(line.tid) && at.Blank() && at.Priority(line.priority) && at.Take('/') &&
           at.Until(" ]", line.tag) && at.Rest().empty();
}

// Returns the line without the colours of "-v color".
std::string WithoutColours(std::string_view line) {
    std::string plain;
    for (size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '\x1b' && at + 1 < line.size() && line[at + 1] == '[') {
            while (at < line.size() && std::isalpha(static_cast<unsigned char>(line[at])) == 0) ++at;
        } else {
            plain += line[at];
        }
    }
    return plain;
}

template <typename Read>
bool Try(Read read, LogLine& line) {
    LogLine result;
    if (!read(result)) return false;
    line = std::move(result);
    return true;
}

}  // namespace

std::optional<LogLine> LogLines::Read(std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.rfind("--------- ", 0) == 0) return std::nullopt;
    const std::string plain = WithoutColours(line);
    LogLine result;
    if (Try([&](LogLine& l) { return LongHead(Cursor(plain), l); }, result)) {
        mHead = result;
        return std::nullopt;
    }
    if (mHead) {
        if (plain.empty()) return std::nullopt;
        result = *mHead;
        result.text = plain;
        return result;
    }
    for (const auto format : {+[](Cursor at, LogLine&l) { return ThreadTime(at, l); },
                              +[](Cursor at, LogLine&l) { return Brief(at, true, l); },
                              +[](Cursor at, LogLine&l) { return Brief(at, false, l); },
                              +[](Cursor at, LogLine&l) { return Host(at, l); }, +Process, +Tag}) {
        if (Try([&](LogLine& l) { return format(Cursor(plain), l); }, result)) return result;
    }
    result.text = plain;
    return result;
}

}  // namespace hbbtv::traffic
