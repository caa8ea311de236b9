// Reads the tokens of one statement from left to right, and the expressions in them.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "play/language/script.h"
#include "play/language/tokens.h"

namespace hbbtv::ctl {

// The names in scope at a place of the play.
class KnownNames {
  public:
    explicit KnownNames(const std::set<std::string>& names) : mScopes{names} {}

    void Begin() { mScopes.emplace_back(); }
    void End() { mScopes.pop_back(); }

    bool Knows(const std::string& name) const;
    void Add(const std::string& name);

    // Throws SyntaxError for an unknown name.
    void Check(const std::string& name, const Place& place) const;

  private:
    std::set<std::string> All() const;

    std::vector<std::set<std::string>> mScopes;
};

class Cursor {
  public:
    Cursor(std::vector<Token> tokens, KnownNames& names) : mTokens(std::move(tokens)), mNames(names) {}

    const Token& Peek(size_t ahead = 0) const { return mTokens[std::min(mAt + ahead, mTokens.size() - 1)]; }
    bool AtEnd() const { return Peek().kind == Token::Kind::End; }

    // Consumes the next token if it is this one.
    bool Take(const std::string& sign);

    // These throw SyntaxError if the next token is a different one.
    Token Next(Token::Kind kind, const std::string& what);
    void Expect(const std::string& sign, const std::string& after);
    void ExpectEnd();

    Expression Value() { return Read(false); }

    // A pattern may also be "_" or "~TEXT", and declares its unknown names.
    Expression Pattern() { return Read(true); }

    // Comma-separated expressions, up to `close` or, if it is empty, to the end or a "within".
    Expressions List(bool pattern, const std::string& close);

    Format Text(const std::string& what);
    Milliseconds Time();

    // Throws SyntaxError for the next token, or a place.
    [[noreturn]] void Fail(const std::string& reason) const { throw SyntaxError{Peek().place, reason}; }

  private:
    Expression Read(bool pattern);
    Expression ReadName(bool pattern);
    Expression ReadText(bool containing);
    Expression ReadWord(bool pattern);
    Expression ReadObject(bool pattern);
    Format FormatOf(const Token& token) const;

    std::vector<Token> mTokens;
    KnownNames& mNames;
    size_t mAt = 0;
};

// Runs `work`, and turns its Failure or BadValue into a SyntaxError at the place.
void At(const Place& place, const std::function<void()>& work);

}  // namespace hbbtv::ctl
