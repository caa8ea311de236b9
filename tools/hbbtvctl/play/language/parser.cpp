#include "play/language/parser.h"

#include <algorithm>
#include <map>
#include <sstream>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/text/quote.h"
#include "play/language/cursor.h"
#include "play/language/tokens.h"
#include "play/language/values.h"
#include "wire/message.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

std::string Trimmed(const std::string& text) {
    const size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string::npos) return "";
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string Listed(const std::vector<Parameter>& parameters) {
    std::string names;
    for (const Parameter& parameter : parameters) {
        names += (names.empty() ? "" : ", ") + parameter.name + " (" + parameter.type->name + ")";
    }
    return names.empty() ? "none" : names;
}

void CheckNumber(const Place& place, const std::string& what, size_t given, const std::vector<Parameter>& wanted) {
    if (given == wanted.size()) return;
    throw SyntaxError{place, what + ": expected " + std::to_string(wanted.size()) + ", not " + std::to_string(given) +
                                 ": " + Listed(wanted)};
}

// Checks constants only: other values are known when the line runs.
void CheckTypes(const Expressions& given, const std::vector<Parameter>& parameters) {
    const Names none;
    for (size_t i = 0; i < given.size(); ++i) {
        if (!IsConstant(given[i])) continue;
        At(given[i].place, [&] { FromJsonValue(*parameters[i].type, Evaluate(given[i], none)); });
    }
}

class Parser {
  public:
    Parser(const std::string& text, const std::set<std::string>& names) : mLines(Lines(text)), mNames(names) {}

    void Read(Script& script) {
        script.body = Block(false);
        if (mEndedBy == "finally") script.finally = Block(false);
        if (mEndedBy == "finally") throw SyntaxError{mEndPlace, "there can be one \"finally\" only"};
    }

  private:
    using Rule = Action (Parser::*)(Cursor&);

    // Parses up to the block's "end"; at the outermost level to "finally" or the end of the file.
    std::vector<Statement> Block(bool inside) {
        std::vector<Statement> statements;
        mEndedBy = "";
        while (mNext < mLines.size()) {
            const std::string line = Trimmed(mLines[mNext]);
            if (line.empty() || line[0] == '#') {
                ++mNext;
                continue;
            }
            const size_t first = mNext;
            mEndPlace = {static_cast<int>(first) + 1, static_cast<int>(mLines[first].find_first_not_of(" \t")) + 1};
            if (line == "end" || line == "finally") {
                ++mNext;
                if ((line == "end") != inside) {
                    throw SyntaxError{mEndPlace, inside ? "\"finally\" is not allowed inside a block"
                                                        : "\"end\" without the \"for\" or \"quiet\" that it ends"};
                }
                mEndedBy = line;
                return statements;
            }
            statements.push_back(ReadStatement(line));
        }
        if (inside) throw SyntaxError{{static_cast<int>(mLines.size()), 1}, "the block has no \"end\""};
        return statements;
    }

    Statement ReadStatement(const std::string& line) {
        Statement statement;
        statement.line = static_cast<int>(mNext) + 1;
        if (line.rfind("tell ", 0) == 0 || line.rfind("until tell ", 0) == 0) {
            statement.keyword = line.substr(0, line.find(' '));
            statement.text = line;
            statement.action = Tell(line);
            return statement;
        }
        const size_t first = mNext;
        Cursor cursor(ReadTokens(mLines, mNext), mNames);
        for (size_t i = first; i < mNext; ++i) {
            statement.text += (statement.text.empty() ? "" : " ") + Trimmed(mLines[i]);
        }
        statement.keyword = cursor.Peek().text;
        const auto rule = Rules().find(cursor.Peek(1).Is(".") ? "" : statement.keyword);
        if (rule == Rules().end()) FailOfUnknown(cursor);
        if (rule->first.empty()) {
            statement.keyword = "call";
        } else {
            cursor.Next(Token::Kind::Word, "a statement");
        }
        statement.action = (this->*rule->second)(cursor);
        cursor.ExpectEnd();
        // Names of the loop are known only in it.
        if (std::holds_alternative<ForStep>(statement.action)) {
            std::get<ForStep>(statement.action).body = Block(true);
            mNames.End();
        } else if (std::holds_alternative<QuietStep>(statement.action)) {
            std::get<QuietStep>(statement.action).body = Block(true);
        }
        return statement;
    }

    static const std::map<std::string, Rule>& Rules() {
        static const std::map<std::string, Rule> rules{
            {"", &Parser::Call},          {"until", &Parser::Until}, {"step", &Parser::Title},
            {"print", &Parser::Print},    {"send", &Parser::Send},   {"emit", &Parser::Emit},
            {"answer", &Parser::Answer},  {"event", &Parser::Event}, {"await", &Parser::Await},
            {"next", &Parser::NextOfAll}, {"no", &Parser::No},       {"ignore", &Parser::Ignore},
            {"show", &Parser::Show},      {"name", &Parser::Name},   {"let", &Parser::Let},
            {"wait", &Parser::Wait},      {"for", &Parser::For},     {"quiet", &Parser::Quiet}};
        return rules;
    }

    [[noreturn]] static void FailOfUnknown(const Cursor& cursor) {
        std::set<std::string> known{"tell", "end", "finally"};
        for (const auto& [name, rule] : Rules()) {
            if (!name.empty()) known.insert(name);
        }
        const std::string word = cursor.Peek().text;
        cursor.Fail("expected a statement or INTERFACE.METHOD(...), not " + Quoted(word) +
                    DidYouMean(word, known, kShortList));
    }

    // INTERFACE.METHOD
    static Package::QualifiedMethod Method(Cursor& cursor, bool ofClients) {
        const Token interface = cursor.Next(Token::Kind::Word, "INTERFACE.METHOD");
        cursor.Expect(".", "the interface");
        const Token method = cursor.Next(Token::Kind::Word, "a method");
        Package::QualifiedMethod found{};
        At(interface.place, [&] { found = Package::Get().FindMethod(interface.text + "." + method.text); });
        if (found.interface->callback == ofClients) return found;
        throw SyntaxError{interface.place,
                          found.interface->name + (ofClients ? " is implemented by the service: call it"
                                                             : " is implemented by clients: it cannot "
                                                               "be called")};
    }

    // "channel.GetName", "IChannel.GetName" of either side.
    static std::string AnyMethod(Cursor& cursor) {
        const bool ofClients = cursor.Peek().text.find("Callback") != std::string::npos;
        const auto method = Method(cursor, ofClients);
        return method.Name();
    }

    static std::optional<Milliseconds> Within(Cursor& cursor) {
        if (!cursor.Take("within")) return std::nullopt;
        return cursor.Time();
    }

    Action Call(Cursor& cursor) {
        CallStep step;
        const Place place = cursor.Peek().place;
        step.called = Method(cursor, false);
        cursor.Expect("(", "the method");
        step.arguments = cursor.List(false, ")");
        CheckNumber(place, "arguments of " + step.called.method->name, step.arguments.size(),
                    step.called.method->arguments);
        CheckTypes(step.arguments, step.called.method->arguments);
        if (!cursor.Take("->")) return step;
        step.results = cursor.List(true, "");
        CheckNumber(place, "results of " + step.called.method->name, step.results->size(), step.called.method->results);
        return step;
    }

    Action Until(Cursor& cursor) {
        if (!cursor.Peek(1).Is(".")) {
            ServiceStep step{};
            const Token name = cursor.Next(Token::Kind::Word, "INTERFACE.METHOD(...), an interface, or tell");
            At(name.place, [&] { step.interface = &Package::Get().FindInterface(name.text); });
            if (step.interface->callback)
                throw SyntaxError{name.place, step.interface->name + " is implemented by clients"};
            step.within = Within(cursor);
            return step;
        }
        Action action = Call(cursor);
        auto& step = std::get<CallStep>(action);
        step.until = true;
        step.within = Within(cursor);
        return action;
    }

    Action Title(Cursor& cursor) { return TitleStep{cursor.Text("a string")}; }
    Action Print(Cursor& cursor) { return PrintStep{cursor.Text("a string")}; }

    // The command extends to the end of the line, or to " -> ".
    Action Tell(const std::string& line) {
        TellStep step;
        step.until = line.rfind("until ", 0) == 0;
        const Place place{static_cast<int>(mNext) + 1, 1};
        const size_t begin = line.find("tell ") + 5;
        const size_t arrow = line.find(" -> ", begin);
        const auto read = [&](const std::string& text) {
            Format format;
            At(place, [&] { format = ReadFormat(Trimmed(text)); });
            for (const Format::Piece& piece : format.pieces) {
                if (!piece.name.empty()) mNames.Check(piece.name, place);
            }
            return format;
        };
        step.command = read(line.substr(begin, arrow == std::string::npos ? arrow : arrow - begin));
        if (arrow != std::string::npos) step.answer = read(line.substr(arrow + 4));
        ++mNext;
        return step;
    }

    static void CheckMembers(const Expression& members, const std::string& whose, const std::vector<Parameter>& known,
                             bool allRequired) {
        std::set<std::string> names;
        for (const Parameter& parameter : known) names.insert(parameter.name);
        for (const std::string& key : members.keys) {
            if (names.count(key) != 0) continue;
            throw SyntaxError{members.place,
                              whose + " has no member " + Quoted(key) + DidYouMean(key, names, kShortList)};
        }
        for (const std::string& name : names) {
            if (!allRequired || std::count(members.keys.begin(), members.keys.end(), name) != 0) continue;
            throw SyntaxError{members.place, whose + " lacks its member " + Quoted(name) + "; it has " + Listed(known)};
        }
    }

    static Expression Members(Cursor& cursor) {
        Expression none;
        none.kind = Expression::Kind::Object;
        none.place = cursor.Peek().place;
        return cursor.Peek().Is("{") ? cursor.Value() : none;
    }

    Action Send(Cursor& cursor) {
        SendStep step{};
        const Token family = cursor.Next(Token::Kind::Word, "FAMILY.OPERATION");
        At(family.place, [&] { step.family = &FindFamily(family.text); });
        cursor.Expect(".", "the family");
        const Token operation = cursor.Next(Token::Kind::Word, "an operation");
        step.operation = step.family->Operation(operation.text);
        if (step.operation == nullptr) {
            throw SyntaxError{operation.place,
                              "the family " + step.family->name + " has no operation " + Quoted(operation.text) +
                                  DidYouMean(operation.text, step.family->OperationNames(), kShortList)};
        }
        step.members = Members(cursor);
        CheckMembers(step.members, step.family->name + "." + (*step.operation)["name"].asString(),
                     WireArguments((*step.operation)["request"]), true);
        if (cursor.Take("->")) step.reply = cursor.Pattern();
        return step;
    }

    // CODE, "mediasync:CODE" or a name.
    static const Json::Value* EventOf(const WireFamily& family, Cursor& cursor) {
        const Token token = cursor.Peek();
        const bool number = token.kind == Token::Kind::Number;
        std::string event = cursor.Next(number ? Token::Kind::Number : Token::Kind::Word, "an event").text;
        if (!number && cursor.Peek().Is(":") && cursor.Peek(1).kind == Token::Kind::Number) {
            cursor.Take(":");
            event += ":" + cursor.Next(Token::Kind::Number, "a code").text;
        }
        const Json::Value* found = nullptr;
        At(token.place, [&] { found = &family.FindEvent(event); });
        return found;
    }

    static const WireFamily* Family(Cursor& cursor) {
        const Token name = cursor.Next(Token::Kind::Word, "a family");
        const WireFamily* family = nullptr;
        At(name.place, [&] { family = &FindFamily(name.text); });
        return family;
    }

    Action Emit(Cursor& cursor) {
        EmitStep step{};
        step.family = Family(cursor);
        step.event = EventOf(*step.family, cursor);
        step.members = Members(cursor);
        CheckMembers(step.members, step.family->name + " " + (*step.event)["name"].asString(),
                     WireArguments(EventMembers(*step.family, *step.event)), false);
        if (cursor.Take("->")) step.reply = cursor.Pattern();
        return step;
    }

    Action Answer(Cursor& cursor) {
        AnswerStep step;
        const Place place = cursor.Peek().place;
        step.answered = Method(cursor, true);
        cursor.Expect("->", "the method");
        step.results = cursor.List(false, "");
        CheckNumber(place, "results of " + step.answered.method->name, step.results.size(),
                    step.answered.method->results);
        CheckTypes(step.results, step.answered.method->results);
        return step;
    }

    Action EventOfKind(Cursor& cursor, EventStep::Which which) {
        EventStep step;
        step.which = which;
        if (!cursor.Peek(1).Is(".")) {
            step.family = Family(cursor);
            step.event = EventOf(*step.family, cursor);
            cursor.Expect(":", "the event");
        }
        const Place place = cursor.Peek().place;
        step.method = Method(cursor, true);
        if (step.event != nullptr && (*step.event)["callback"] != step.method.method->name) {
            throw SyntaxError{place, step.family->name + " " + (*step.event)["code"].asString() + " does not lead to " +
                                         step.method.method->name + " but to " +
                                         Quoted((*step.event)["callback"].asString())};
        }
        cursor.Expect("(", "the method");
        step.arguments = cursor.List(true, ")");
        CheckNumber(place, "arguments of " + step.method.method->name, step.arguments.size(),
                    step.method.method->arguments);
        step.within = Within(cursor);
        return step;
    }

    Action Event(Cursor& cursor) { return EventOfKind(cursor, EventStep::Which::NextOfItsMethod); }
    Action Await(Cursor& cursor) { return EventOfKind(cursor, EventStep::Which::AmongOthers); }
    Action NextOfAll(Cursor& cursor) { return EventOfKind(cursor, EventStep::Which::NextOfAll); }

    Action No(Cursor& cursor) {
        cursor.Expect("event", "\"no\"");
        return NoEventStep{cursor.AtEnd() ? "" : AnyMethod(cursor)};
    }

    Action Ignore(Cursor& cursor) { return IgnoreStep{AnyMethod(cursor)}; }

    // The names in the string are the method's: the arguments of an event, the results of a call.
    Action Show(Cursor& cursor) {
        const Place place = cursor.Peek().place;
        ShowStep step;
        step.method = AnyMethod(cursor);
        const auto [interface, method] = Package::Get().FindMethod(step.method);
        std::set<std::string> names;
        for (const Parameter& p : interface->callback ? method->arguments : method->results) names.insert(p.name);
        const Token text = cursor.Next(Token::Kind::Text, "a string");
        At(text.place, [&] { step.text = ReadFormat(text.text); });
        for (const Format::Piece& piece : step.text.pieces) {
            if (piece.name.empty() || names.count(piece.name) != 0) continue;
            throw SyntaxError{
                place, step.method + " has no " + Quoted(piece.name) + DidYouMean(piece.name, names, kShortList)};
        }
        return step;
    }

    Action Name(Cursor& cursor) {
        NameStep step;
        step.value = cursor.Value();
        cursor.Expect("as", "the value");
        step.text = cursor.Text("a string");
        return step;
    }

    Action Let(Cursor& cursor) {
        LetStep step;
        step.name = cursor.Next(Token::Kind::Name, "a name such as $channel").text;
        cursor.Expect("=", "the name");
        step.value = cursor.Value();
        mNames.Add(step.name);
        return step;
    }

    Action Wait(Cursor& cursor) { return WaitStep{cursor.Time()}; }

    Action For(Cursor& cursor) {
        ForStep step;
        mNames.Begin();
        step.pattern = cursor.Pattern();
        TakeNothingToo(step.pattern);
        if (cursor.Take("in")) {
            step.list = cursor.Value();
            return step;
        }
        cursor.Expect("from", "the name (or \"in\" and a list)");
        step.from = cursor.Value();
        cursor.Expect("below", "the first number");
        step.below = cursor.Value();
        return step;
    }

    // The values of a loop may be 0 or empty.
    static void TakeNothingToo(Expression& pattern) {
        pattern.mayBeEmpty = true;
        for (Expression& element : pattern.elements) TakeNothingToo(element);
    }

    Action Quiet(Cursor&) { return QuietStep{}; }

    const std::vector<std::string> mLines;
    size_t mNext = 0;
    KnownNames mNames;
    std::string mEndedBy;
    Place mEndPlace;
};

}  // namespace

Script ParseScript(const std::string& file, const std::string& text, const std::set<std::string>& names) {
    Script script;
    script.file = file;
    try {
        Parser(text, names).Read(script);
    } catch (const SyntaxError& e) {
        throw Failure(
            kUsage, file + ":" + std::to_string(e.place.line) + ":" + std::to_string(e.place.column) + ": " + e.reason);
    }
    return script;
}

}  // namespace hbbtv::ctl
