// A parsed play: statements with their places, and their expressions.
#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "common/duration.h"
#include "package/description.h"
#include "play/language/format.h"

namespace hbbtv::ctl {

struct Place {
    int line = 0;
    int column = 0;
};

// A value, or the pattern of one.
struct Expression {
    enum class Kind { Literal, Text, Name, Anything, Containing, List, Object };

    Kind kind = Kind::Literal;
    Place place;
    Json::Value literal;               // Literal
    Format text;                       // Text: with names in it; Containing
    std::string name;                  // Name, without its "$"
    bool mayBeEmpty = false;           // Name: "$x?", which also binds 0, false and ""
    std::vector<std::string> keys;     // Object
    std::vector<Expression> elements;  // List, and Object in the order of its keys
};

using Expressions = std::vector<Expression>;

struct Statement;

struct TitleStep {
    Format text;
};

struct PrintStep {
    Format text;
};

struct CallStep {
    Package::QualifiedMethod called;
    Expressions arguments;
    std::optional<Expressions> results;  // default: a status of 0
    bool until = false;
    std::optional<Milliseconds> within;
};

// Waits until the interface is registered.
struct ServiceStep {
    const Interface* interface;
    std::optional<Milliseconds> within;
};

struct TellStep {
    Format command;
    std::optional<Format> answer;  // default: one that begins with "ok"
    bool until = false;
};

struct SendStep {
    const WireFamily* family;
    const Json::Value* operation;
    Expression members;
    std::optional<Expression> reply;  // default: "ret" is 0
};

struct EmitStep {
    const WireFamily* family;
    const Json::Value* event;
    Expression members;
    std::optional<Expression> reply;  // none: one-way
};

struct AnswerStep {
    Package::QualifiedMethod answered;
    Expressions results;
};

struct EventStep {
    enum class Which { NextOfItsMethod, AmongOthers, NextOfAll };

    Which which = Which::NextOfItsMethod;
    const WireFamily* family = nullptr;  // if the line names the wire event
    const Json::Value* event = nullptr;
    Package::QualifiedMethod method;
    Expressions arguments;
    std::optional<Milliseconds> within;
};

struct NoEventStep {
    std::string method;  // empty: any
};

struct IgnoreStep {
    std::string method;
};

struct ShowStep {
    std::string method;
    Format text;
};

struct NameStep {
    Expression value;
    Format text;
};

struct LetStep {
    std::string name;
    Expression value;
};

struct WaitStep {
    Milliseconds time;
};

struct ForStep {
    Expression pattern;
    std::optional<Expression> list;
    Expression from;  // if there is no list
    Expression below;
    std::vector<Statement> body;
};

struct QuietStep {
    std::vector<Statement> body;
};

using Action =
    std::variant<TitleStep, PrintStep, CallStep, ServiceStep, TellStep, SendStep, EmitStep, AnswerStep, EventStep,
                 NoEventStep, IgnoreStep, ShowStep, NameStep, LetStep, WaitStep, ForStep, QuietStep>;

struct Statement {
    int line = 0;
    std::string keyword;  // "call", "until", "tell", ...
    std::string text;     // as written
    Action action;
};

struct Script {
    std::string file;
    std::vector<Statement> body;
    std::vector<Statement> finally;  // runs even if the body fails
};

}  // namespace hbbtv::ctl
