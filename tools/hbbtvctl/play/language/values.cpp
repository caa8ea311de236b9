#include "play/language/values.h"

#include <algorithm>
#include <cstdlib>

#include "common/failure.h"
#include "common/text/json.h"
#include "common/text/quote.h"
#include "wire/values.h"

namespace hbbtv::ctl {

namespace {

// Converts a handle of the wire, "0x1000", to the number that clients use.
Json::Value Number(const Json::Value& value) {
    if (!value.isString() || value.asString().rfind("0x", 0) != 0) return value;
    return static_cast<Json::UInt64>(std::strtoull(value.asString().c_str(), nullptr, 16));
}

bool SameNumber(const Json::Value& a, const Json::Value& b) {
    if (!a.isIntegral() || !b.isIntegral() || a.isBool() || b.isBool()) return a.asDouble() == b.asDouble();
    if (a.isInt64() && b.isInt64()) return a.asInt64() == b.asInt64();
    return a.isUInt64() && b.isUInt64() && a.asUInt64() == b.asUInt64();
}

bool SameValue(const Json::Value& expected, const Json::Value& actual, const Type* type) {
    if (type != nullptr && type->kind == Type::Kind::Enum && expected.isString()) {
        try {
            return FromJsonValue(*type, expected).asInt64() == actual.asInt64();
        } catch (const BadValue&) {
            return false;
        }
    }
    const bool bothNumbers =
        expected.isNumeric() && !expected.isBool() && Number(actual).isNumeric() && !actual.isBool();
    if (bothNumbers) return SameNumber(expected, Number(actual));
    return expected == actual;
}

const Type* FieldOf(const Type* type, const std::string& name) {
    if (type == nullptr) return nullptr;
    for (const Parameter& field : type->fields) {
        if (field.name == name) return field.type.get();
    }
    return nullptr;
}

// One comparison; its new names are bound if all of it matches.
class Comparison {
  public:
    explicit Comparison(Names& names) : mNames(names) {}

    bool Fits(const Expression& pattern, const Json::Value& value, const Type* type) {
        switch (pattern.kind) {
            case Expression::Kind::Anything:
                return true;
            case Expression::Kind::Containing:
                return value.isString() && value.asString().find(Text(pattern)) != std::string::npos;
            case Expression::Kind::Name:
                return FitsName(pattern, value, type);
            case Expression::Kind::List:
                return FitsList(pattern, value, type);
            case Expression::Kind::Object:
                return FitsObject(pattern, value, type);
            default:
                return SameValue(Evaluate(pattern, mNames), value, type);
        }
    }

    void Keep() const {
        for (const auto& [name, value] : mFresh) mNames.Set(name, value);
    }

  private:
    std::string Text(const Expression& pattern) const {
        Expression text = pattern;
        text.kind = Expression::Kind::Text;
        return Evaluate(text, mNames).asString();
    }

    bool FitsName(const Expression& pattern, const Json::Value& value, const Type* type) {
        const Json::Value* known = mNames.Find(pattern.name);
        const auto fresh = mFresh.find(pattern.name);
        if (known == nullptr && fresh != mFresh.end()) known = &fresh->second;
        if (known != nullptr) return SameValue(*known, value, type);
        if (!pattern.mayBeEmpty && !IsSomething(value)) return false;
        mFresh[pattern.name] = type == nullptr ? Number(value) : value;
        return true;
    }

    bool FitsList(const Expression& pattern, const Json::Value& value, const Type* type) {
        if (!value.isArray() || value.size() != pattern.elements.size()) return false;
        for (Json::ArrayIndex i = 0; i < value.size(); ++i) {
            const Type* element = type == nullptr ? nullptr : type->element.get();
            if (!Fits(pattern.elements[i], value[i], element)) return false;
        }
        return true;
    }

    // Members that the pattern does not name must be 0, false or empty.
    bool FitsObject(const Expression& pattern, const Json::Value& value, const Type* type) {
        if (!value.isObject()) return false;
        for (size_t i = 0; i < pattern.keys.size(); ++i) {
            const std::string& key = pattern.keys[i];
            if (!value.isMember(key) || !Fits(pattern.elements[i], value[key], FieldOf(type, key))) return false;
        }
        const std::vector<std::string> members = value.getMemberNames();
        return std::all_of(members.begin(), members.end(), [&](const std::string& name) {
            return std::count(pattern.keys.begin(), pattern.keys.end(), name) != 0 || !IsSomething(value[name]);
        });
    }

    Names& mNames;
    std::map<std::string, Json::Value> mFresh;
};

}  // namespace

const Json::Value* Names::Find(const std::string& name) const {
    for (auto scope = mScopes.rbegin(); scope != mScopes.rend(); ++scope) {
        const auto found = scope->find(name);
        if (found != scope->end()) return &found->second;
    }
    return nullptr;
}

void Names::Set(const std::string& name, const Json::Value& value) {
    for (auto scope = mScopes.rbegin(); scope != mScopes.rend(); ++scope) {
        const auto found = scope->find(name);
        if (found == scope->end()) continue;
        found->second = value;
        return;
    }
    mScopes.back()[name] = value;
}

bool IsConstant(const Expression& expression) {
    if (expression.kind == Expression::Kind::Name || expression.kind == Expression::Kind::Text) return false;
    return std::all_of(expression.elements.begin(), expression.elements.end(), IsConstant);
}

Json::Value Evaluate(const Expression& expression, const Names& names) {
    const auto valueOf = [&names](const std::string& name) {
        const Json::Value* value = names.Find(name);
        if (value == nullptr)
            throw Failure(kUnexpected, "$" + name + " has no value: the line that binds it did not run");
        return *value;
    };
    Json::Value value;
    switch (expression.kind) {
        case Expression::Kind::Name:
            return valueOf(expression.name);
        case Expression::Kind::Text:
            return Filled(expression.text, valueOf, [](int64_t) { return std::string(); });
        case Expression::Kind::List:
            value = Json::Value(Json::arrayValue);
            for (const Expression& element : expression.elements) value.append(Evaluate(element, names));
            return value;
        case Expression::Kind::Object:
            value = Json::Value(Json::objectValue);
            for (size_t i = 0; i < expression.keys.size(); ++i) {
                value[expression.keys[i]] = Evaluate(expression.elements[i], names);
            }
            return value;
        default:
            return expression.literal;
    }
}

bool Match(const Expression& pattern, const Json::Value& value, const Type* type, Names& names) {
    Comparison comparison(names);
    if (!comparison.Fits(pattern, value, type)) return false;
    comparison.Keep();
    return true;
}

bool Match(const Expressions& patterns, const Json::Value& values, const std::vector<Parameter>& parameters,
           Names& names) {
    Comparison comparison(names);
    for (size_t i = 0; i < patterns.size(); ++i) {
        if (!comparison.Fits(patterns[i], values[static_cast<Json::ArrayIndex>(i)], parameters[i].type.get()))
            return false;
    }
    comparison.Keep();
    return true;
}

std::string Shown(const Expression& pattern, const Names& names) {
    std::string text;
    const auto separator = [&text] { return text.empty() ? "" : ", "; };
    switch (pattern.kind) {
        case Expression::Kind::Anything:
            return "_";
        case Expression::Kind::Name: {
            const Json::Value* value = names.Find(pattern.name);
            return value != nullptr ? WriteJson(*value) : "$" + pattern.name + (pattern.mayBeEmpty ? "?" : "");
        }
        case Expression::Kind::List:
            return "[" + Shown(pattern.elements, names) + "]";
        case Expression::Kind::Object:
            for (size_t i = 0; i < pattern.keys.size(); ++i) {
                text += separator() + Quoted(pattern.keys[i]) + ": " + Shown(pattern.elements[i], names);
            }
            return "{" + text + "}";
        default:
            text = pattern.kind == Expression::Kind::Containing ? "~" : "";
            return text +
                   (pattern.literal.isString() ? Quoted(pattern.literal.asString()) : WriteJson(pattern.literal));
    }
}

std::string Shown(const Expressions& patterns, const Names& names) {
    std::string text;
    for (const Expression& pattern : patterns) text += (text.empty() ? "" : ", ") + Shown(pattern, names);
    return text;
}

bool IsSomething(const Json::Value& value) {
    if (value.isBool()) return value.asBool();
    if (value.isNumeric()) return value.asDouble() != 0;
    return value.isString() ? !value.asString().empty() : !value.empty();
}

bool MatchText(const std::string& pattern, const std::string& text) {
    const size_t dots = pattern.find("...");
    if (dots == std::string::npos) return pattern == text;
    if (text.compare(0, dots, pattern, 0, dots) != 0) return false;
    const std::string rest = pattern.substr(dots + 3);
    for (size_t at = dots; at <= text.size(); ++at) {
        if (MatchText(rest, text.substr(at))) return true;
    }
    return false;
}

}  // namespace hbbtv::ctl
