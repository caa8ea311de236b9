#include "play/language/tokens.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>

#include "common/text/utf8.h"

namespace hbbtv::ctl {

namespace {

bool IsWord(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// Reads one line; brackets may remain open.
class LineReader {
  public:
    LineReader(const std::string& line, int number, std::vector<Token>& tokens)
        : mLine(line), mNumber(number), mTokens(tokens) {}

    // Returns the change of the number of open brackets.
    int Read() {
        while (true) {
            while (mAt < mLine.size() && std::isspace(static_cast<unsigned char>(mLine[mAt])) != 0) ++mAt;
            if (mAt >= mLine.size() || mLine[mAt] == '#') return mOpen;
            ReadToken();
        }
    }

  private:
    [[noreturn]] void Fail(const std::string& reason, size_t at) const {
        throw SyntaxError{{mNumber, static_cast<int>(at) + 1}, reason};
    }

    void Add(Token::Kind kind, const std::string& text, size_t at, const Json::Value& number = {}) {
        mTokens.push_back({kind, text, number, {mNumber, static_cast<int>(at) + 1}});
    }

    std::string WordAt(size_t at) const {
        size_t end = at;
        while (end < mLine.size() && IsWord(mLine[end])) ++end;
        return mLine.substr(at, end - at);
    }

    void ReadToken() {
        const size_t begin = mAt;
        const char c = mLine[mAt];
        const char next = mAt + 1 < mLine.size() ? mLine[mAt + 1] : '\0';
        if (c == '"') return ReadText();
        if (std::isdigit(static_cast<unsigned char>(c)) != 0) return ReadNumber();
        if (c == '-' && std::isdigit(static_cast<unsigned char>(next)) != 0) return ReadNumber();
        if (c == '$' || c == '@' || IsWord(c)) {
            const std::string word = WordAt(c == '$' || c == '@' ? mAt + 1 : mAt);
            if (word.empty()) Fail(std::string("\"") + c + "\" has to be followed by a name", begin);
            mAt += word.size() + (c == '$' || c == '@' ? 1 : 0);
            return Add(c == '$' ? Token::Kind::Name : Token::Kind::Word, (c == '@' ? "@" : "") + word, begin);
        }
        mAt += c == '-' && next == '>' ? 2 : 1;
        const std::string sign = mLine.substr(begin, mAt - begin);
        if (sign != "->" && std::string("()[]{},:.=~?").find(c) == std::string::npos) {
            Fail("unexpected character \"" + sign + "\"", begin);
        }
        if (std::string("([{").find(c) != std::string::npos) ++mOpen;
        if (std::string(")]}").find(c) != std::string::npos) --mOpen;
        Add(Token::Kind::Sign, sign, begin);
    }

    void ReadNumber() {
        const size_t begin = mAt;
        const char* start = mLine.c_str() + begin;
        char* end = nullptr;
        errno = 0;
        const bool negative = *start == '-';
        const char* digits = start + (negative ? 1 : 0);
        const bool hexadecimal = digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X');
        Json::Value number;
        if (negative) {
            number = static_cast<Json::Int64>(std::strtoll(start, &end, hexadecimal ? 16 : 10));
        } else {
            const unsigned long long value = std::strtoull(start, &end, hexadecimal ? 16 : 10);
            number = value <= INT64_MAX ? Json::Value(static_cast<Json::Int64>(value))
                                        : Json::Value(static_cast<Json::UInt64>(value));
        }
        if (errno == ERANGE) Fail("the number does not fit into 64 bits", begin);
        const bool real = (*end == '.' && std::isdigit(static_cast<unsigned char>(end[1])) != 0) ||
                          ((*end == 'e' || *end == 'E') && !hexadecimal);
        if (real) number = std::strtod(start, &end);
        mAt = begin + static_cast<size_t>(end - start);
        const std::string unit = WordAt(mAt);
        mAt += unit.size();
        if (unit.empty()) return Add(Token::Kind::Number, mLine.substr(begin, mAt - begin), begin, number);
        if ((unit != "ms" && unit != "s") || real || negative) {
            Fail("\"" + mLine.substr(begin, mAt - begin) + "\" is neither a number nor a time such as 300ms or 2s",
                 begin);
        }
        Add(Token::Kind::Time, mLine.substr(begin, mAt - begin), begin,
            static_cast<Json::Int64>(number.asUInt64() % 1000000000 * (unit == "s" ? 1000 : 1)));
    }

    void ReadText() {
        const size_t begin = mAt++;
        std::string text;
        while (mAt < mLine.size() && mLine[mAt] != '"') {
            if (mLine[mAt] == '\\') {
                ReadEscape(text);
            } else {
                text += mLine[mAt++];
            }
        }
        if (mAt >= mLine.size()) Fail("the string has no closing quote", begin);
        ++mAt;
        Add(Token::Kind::Text, text, begin);
    }

    void ReadEscape(std::string& text) {
        static const std::string kNames = "\"\\/bfnrt";
        static const std::string kMeanings = "\"\\/\b\f\n\r\t";
        const size_t begin = mAt++;
        const char c = mAt < mLine.size() ? mLine[mAt++] : '\0';
        const size_t known = kNames.find(c);
        if (c == 'x') {
            text += static_cast<char>(Digits(2, begin));
        } else if (c == 'u') {
            unsigned code = Digits(4, begin);
            if (code >= 0xd800 && code < 0xdc00 && mLine.compare(mAt, 2, "\\u") == 0) {
                mAt += 2;
                code = 0x10000 + ((code - 0xd800) << 10) + (Digits(4, begin) - 0xdc00);
            }
            AppendUtf8(text, code);
        } else if (c != '\0' && known != std::string::npos) {
            text += kMeanings[known];
        } else {
            Fail(R"(unknown escape: use \" \\ \n \r \t, \u and four or \x and two hexadecimal digits)", begin);
        }
    }

    unsigned Digits(size_t count, size_t begin) {
        const std::string digits = mLine.substr(mAt, count);
        if (digits.size() < count || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
            Fail("the escape needs " + std::to_string(count) + " hexadecimal digits", begin);
        }
        mAt += count;
        return static_cast<unsigned>(std::stoul(digits, nullptr, 16));
    }

    const std::string& mLine;
    const int mNumber;
    std::vector<Token>& mTokens;
    size_t mAt = 0;
    int mOpen = 0;
};

}  // namespace

std::vector<Token> ReadTokens(const std::vector<std::string>& lines, size_t& next) {
    std::vector<Token> tokens;
    int open = 0;
    do {
        open += LineReader(lines[next], static_cast<int>(next) + 1, tokens).Read();
        ++next;
    } while (open > 0 && next < lines.size());
    const size_t last = next - 1;
    tokens.push_back(
        {Token::Kind::End, "", {}, {static_cast<int>(last) + 1, static_cast<int>(lines[last].size()) + 1}});
    return tokens;
}

}  // namespace hbbtv::ctl
