#include "check/conformance.h"

#include <algorithm>
#include <map>
#include <optional>

#include "common/text/pointer_text.h"
#include "wire/message.h"

namespace hbbtv::ctl {

namespace {

std::set<std::string> Counts(const Json::Value& members) {
    std::set<std::string> counts;
    for (const Json::Value& member : members) {
        counts.insert(member["repeat"].asString());
        if (member.isMember("fields")) counts.insert(member["fields"]["repeat"].asString());
    }
    return counts;
}

// Returns "onid" for "onid", "out_onid" and "in_onid": the same fact in a reply and in a request.
std::string Fact(const std::string& key) {
    const std::string folded = key.rfind("out_", 0) == 0  ? key.substr(4)
                               : key.rfind("in_", 0) == 0 ? key.substr(3)
                                                          : key;
    return FoldedName(folded);
}

// What a platform has answered.
class Knowledge {
  public:
    void Learn(const Question& question) {
        if (question.reply.isNull() || question.reply["ret"] != 0) return;
        for (const Json::Value& member : (*question.operation)["reply"]) {
            const std::string key = member["key"].asString();
            const Json::Value& value = question.reply[key];
            if (member["type"] != "pointer") {
                if (!value.isNull() && !value.isArray() && !value.isObject()) mFacts[Fact(key)] = value;
            } else if (const auto handle = value.isString() ? ParsePointer(value.asString()) : std::nullopt) {
                if (*handle == 0) continue;
                const std::string kind = member["handle"].asString();
                mHandles[kind] = *handle;
                if (member["shared"].asBool()) mShared.insert(*handle);
            }
        }
    }

    // Returns the values of a request, or null if it needs a handle that is not known; `missing` is its kind. If
    // `onlyKnown`, also null if an answer has not given each of the other values.
    Json::Value ValuesFor(const Question& question, bool onlyKnown, std::string& missing) const {
        Json::Value values(Json::objectValue);
        const Json::Value& members = (*question.operation)["request"];
        const std::set<std::string> counts = Counts(members);
        for (const Json::Value& member : members) {
            const std::string key = member["key"].asString();
            const std::string name = key.substr(0, key.find("%d"));
            if (counts.count(key) != 0) continue;
            Json::Value value;
            if (member["type"] == "pointer" && member.isMember("handle")) {
                const auto handle = mHandles.find(member["handle"].asString());
                missing = member["handle"].asString();
                if (handle == mHandles.end()) return Json::Value();
                if (question.Effect() == "release" && mShared.count(handle->second) != 0) return Json::Value();
                value = Json::UInt64{handle->second};
            } else {
                const auto fact = mFacts.find(Fact(key));
                const bool known = fact != mFacts.end();
                if (onlyKnown && !known && !member.isMember("example") && member["type"] != "pointer")
                    return Json::Value();
                value = Scalar(member["type"].asString(), known ? fact->second : member["example"]);
            }
            const bool list = member.isMember("repeat") || member.isMember("fields");
            values[name] = list ? Json::Value(Json::arrayValue) : value;
            if (list && member.isMember("handle")) values[name].append(value);
        }
        return values;
    }

  private:
    // Returns the fact if it is of the type, else a value that any platform understands.
    static Json::Value Scalar(const std::string& type, const Json::Value& fact) {
        if (type == "string") return fact.isString() ? fact : Json::Value("");
        if (type == "bool") return fact.isBool() ? fact : Json::Value(false);
        if (type == "double") return fact.isNumeric() ? fact : Json::Value(0.0);
        if (type == "array") return Json::Value(Json::arrayValue);
        if (type == "int") return fact.isInt() ? fact : Json::Value(0);
        return fact.isUInt() ? fact : Json::Value(0u);
    }

    std::map<std::string, uint64_t> mHandles;  // the newest, by kind
    std::set<uint64_t> mShared;                // handles that are not ours to release
    std::map<std::string, Json::Value> mFacts;
};

bool GivesHandles(const Json::Value& operation) {
    return std::any_of(operation["reply"].begin(), operation["reply"].end(),
                       [](const Json::Value& member) { return member.isMember("handle"); });
}

class Conversation {
  public:
    Conversation(const std::string& directory, const Scope& scope) : mScope(scope), mAsker(directory, scope.limit) {
        for (const WireFamily& family : WireFamilies()) {
            for (const Json::Value& operation : family.protocol["operations"]) {
                mQuestions.emplace_back(family, operation);
            }
        }
    }

    std::deque<Question> Hold() {
        for (Question& question : mQuestions) {
            if (MayAsk(question)) mPending.push_back(&question);
        }
        // What changes nothing comes first, and again after each change; what ends objects comes last.
        while (AskOne("none", true) || AskOne("none", false) || AskOne("", false) || AskOne("release", false)) {
        }
        mAsker.Finish();
        std::deque<Question> reported;
        for (Question& question : mQuestions) {
            if (InScope(question)) reported.push_back(std::move(question));
        }
        return reported;
    }

  private:
    bool InScope(const Question& question) const {
        return mScope.families.empty() || mScope.families.count(question.family->name) != 0;
    }

    bool MayAsk(Question& question) const {
        if (question.Effect() != "none" && !mScope.changes) {
            question.reason = "it changes something (--allow-changes)";
            return false;
        }
        return InScope(question) || (question.Effect() != "release" && GivesHandles(*question.operation));
    }

    bool AskOne(const std::string& effect, bool onlyKnown) {
        for (auto place = mPending.begin(); place != mPending.end(); ++place) {
            Question& question = **place;
            if (question.Effect() != effect) continue;
            std::string missing;
            const Json::Value values = mKnowledge.ValuesFor(question, onlyKnown, missing);
            if (values.isNull()) {
                if (!missing.empty()) question.reason = "no answer contains a handle of the kind " + missing;
                continue;
            }
            mPending.erase(place);
            mAsker.Ask(question, values);
            mKnowledge.Learn(question);
            return true;
        }
        return false;
    }

    const Scope& mScope;
    Asker mAsker;
    Knowledge mKnowledge;
    std::deque<Question> mQuestions;
    std::vector<Question*> mPending;
};

}  // namespace

std::deque<Question> CheckPlatform(const std::string& directory, const Scope& scope) {
    return Conversation(directory, scope).Hold();
}

}  // namespace hbbtv::ctl
