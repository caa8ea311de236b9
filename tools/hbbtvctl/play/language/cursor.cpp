#include "play/language/cursor.h"

#include <algorithm>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/quote.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

Json::Value Enumerated(const std::string& enumeration, const std::string& name) {
    std::set<std::string> known;
    for (const auto& type : Package::Get().types) {
        if (type->kind != Type::Kind::Enum) continue;
        known.insert(type->name);
        if (type->name == enumeration) return FromWord(*type, name);
    }
    throw BadValue("there is no enumeration \"" + enumeration + "\"" + DidYouMean(enumeration, known, kShortList));
}

std::string Shown(const Token& token) {
    if (token.kind == Token::Kind::End) return "the end of the line";
    if (token.kind == Token::Kind::Text) return Quoted(token.text);
    return "\"" + (token.kind == Token::Kind::Name ? "$" + token.text : token.text) + "\"";
}

}  // namespace

bool KnownNames::Knows(const std::string& name) const {
    return std::any_of(mScopes.begin(), mScopes.end(), [&](const auto& scope) { return scope.count(name) != 0; });
}

void KnownNames::Add(const std::string& name) {
    if (!Knows(name)) mScopes.back().insert(name);
}

std::set<std::string> KnownNames::All() const {
    std::set<std::string> names;
    for (const auto& scope : mScopes) {
        for (const std::string& name : scope) names.insert("$" + name);
    }
    return names;
}

void KnownNames::Check(const std::string& name, const Place& place) const {
    if (Knows(name)) return;
    throw SyntaxError{place, "unknown name \"$" + name + "\"" + DidYouMean("$" + name, All(), kShortList)};
}

bool Cursor::Take(const std::string& sign) {
    if (!Peek().Is(sign)) return false;
    ++mAt;
    return true;
}

Token Cursor::Next(Token::Kind kind, const std::string& what) {
    if (Peek().kind != kind) Fail("expected " + what + ", not " + Shown(Peek()));
    return mTokens[mAt++];
}

void Cursor::Expect(const std::string& sign, const std::string& after) {
    if (!Take(sign)) Fail("expected \"" + sign + "\" after " + after + ", not " + Shown(Peek()));
}

void Cursor::ExpectEnd() {
    if (!AtEnd()) Fail("expected the end of the line, not " + Shown(Peek()));
}

Expressions Cursor::List(bool pattern, const std::string& close) {
    Expressions list;
    if (close.empty() ? AtEnd() : Take(close)) return list;
    do {
        list.push_back(Read(pattern));
    } while (Take(","));
    if (!close.empty()) Expect(close, "a value");
    return list;
}

Format Cursor::Text(const std::string& what) {
    const Token token = Next(Token::Kind::Text, what);
    return FormatOf(token);
}

Milliseconds Cursor::Time() {
    return Milliseconds(Next(Token::Kind::Time, "a time such as 300ms or 2s").number.asInt64());
}

Format Cursor::FormatOf(const Token& token) const {
    Format format;
    At(token.place, [&] { format = ReadFormat(token.text); });
    for (const Format::Piece& piece : format.pieces) {
        if (!piece.name.empty()) mNames.Check(piece.name, token.place);
    }
    return format;
}

Expression Cursor::Read(bool pattern) {
    const Token& token = Peek();
    if (token.kind == Token::Kind::Name) return ReadName(pattern);
    if (token.kind == Token::Kind::Text) return ReadText(false);
    if (token.kind == Token::Kind::Word) return ReadWord(pattern);
    Expression expression;
    expression.place = token.place;
    if (token.kind == Token::Kind::Number) {
        expression.literal = token.number;
        ++mAt;
        return expression;
    }
    if (Take("[")) {
        expression.kind = Expression::Kind::List;
        expression.elements = List(pattern, "]");
        return expression;
    }
    if (token.Is("{")) return ReadObject(pattern);
    if (pattern && Take("~")) return ReadText(true);
    Fail(std::string("expected a ") + (pattern ? "pattern" : "value") + ", not " + Shown(token));
}

Expression Cursor::ReadName(bool pattern) {
    const Token token = mTokens[mAt++];
    Expression expression;
    expression.kind = Expression::Kind::Name;
    expression.place = token.place;
    expression.name = token.text;
    if (pattern) {
        expression.mayBeEmpty = Take("?");
        mNames.Add(token.text);
    } else {
        mNames.Check(token.text, token.place);
    }
    return expression;
}

Expression Cursor::ReadText(bool containing) {
    const Token token = Next(Token::Kind::Text, "a string");
    Expression expression;
    expression.place = token.place;
    expression.text = FormatOf(token);
    expression.literal = token.text;
    if (containing) {
        expression.kind = Expression::Kind::Containing;
    } else if (expression.text.HasNames()) {
        expression.kind = Expression::Kind::Text;
    }
    return expression;
}

// true, false, null, "_", "@listen", an enumerator, or ENUMERATION.ENUMERATOR.
Expression Cursor::ReadWord(bool pattern) {
    const Token token = mTokens[mAt++];
    Expression expression;
    expression.place = token.place;
    if (Take(".")) {
        const Token name = Next(Token::Kind::Word, "an enumerator");
        At(token.place, [&] { expression.literal = Enumerated(token.text, name.text); });
    } else if (token.text == "_" && pattern) {
        expression.kind = Expression::Kind::Anything;
    } else if (token.text == "true" || token.text == "false") {
        expression.literal = token.text == "true";
    } else if (token.text != "null") {
        expression.literal = token.text;
    }
    return expression;
}

Expression Cursor::ReadObject(bool pattern) {
    Expression expression;
    expression.kind = Expression::Kind::Object;
    expression.place = Peek().place;
    Take("{");
    if (Take("}")) return expression;
    do {
        const Token key =
            Peek().kind == Token::Kind::Word ? mTokens[mAt++] : Next(Token::Kind::Text, "a member's name");
        if (std::count(expression.keys.begin(), expression.keys.end(), key.text) != 0) {
            throw SyntaxError{key.place, "duplicate member " + Quoted(key.text)};
        }
        Expect(":", "a member's name");
        expression.keys.push_back(key.text);
        expression.elements.push_back(Read(pattern));
    } while (Take(","));
    Expect("}", "a member");
    return expression;
}

void At(const Place& place, const std::function<void()>& work) {
    try {
        work();
    } catch (const Failure& e) {
        throw SyntaxError{place, e.what()};
    } catch (const BadValue& e) {
        throw SyntaxError{place, e.what()};
    }
}

}  // namespace hbbtv::ctl
