#include "check/report.h"

#include <algorithm>
#include <cstdio>

#include "common/text/json.h"
#include "common/text/printable.h"
#include "terminal/style.h"

namespace hbbtv::ctl {

namespace {

using Outcome = Question::Outcome;

constexpr size_t kWidth = 26;  // of the names of families

struct Totals {
    int asked = 0;
    int wrong = 0;
    int refused = 0;  // with a status other than 0, so only that was compared
    int skipped = 0;

    void Add(const Question& question) {
        asked += question.outcome == Outcome::Skipped ? 0 : 1;
        skipped += question.outcome == Outcome::Skipped ? 1 : 0;
        wrong += question.outcome == Outcome::Wrong ? 1 : 0;
        refused += question.outcome == Outcome::Right && !question.reply.isNull() && question.reply["ret"] != 0 ? 1 : 0;
    }

    std::string InWords() const {
        return std::to_string(asked) + " asked, " + std::to_string(wrong) + " wrong, " + std::to_string(refused) +
               " with a status other than 0, " + std::to_string(skipped) + " not asked";
    }
};

// Returns the totals of each family that a question is of, in the order of the questions.
std::vector<std::pair<std::string, Totals>> ByFamily(const std::deque<Question>& questions) {
    std::vector<std::pair<std::string, Totals>> families;
    for (const Question& question : questions) {
        if (families.empty() || families.back().first != question.family->name) {
            families.emplace_back(question.family->name, Totals());
        }
        families.back().second.Add(question);
    }
    return families;
}

std::string Xml(const std::string& text) {
    std::string escaped;
    for (const char c : Printable(text)) {
        escaped += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '"' ? "&quot;" : std::string(1, c);
    }
    return escaped;
}

std::string Seconds(double milliseconds) {
    char text[40];
    std::snprintf(text, sizeof(text), "%.6f", milliseconds / 1000);
    return text;
}

std::string TestCase(const Question& question) {
    std::string text = "    <testcase classname=\"" + question.family->name + "\" name=\"" +
                       Xml((*question.operation)["name"].asString()) + "\" time=\"" + Seconds(question.milliseconds) +
                       "\"";
    if (question.outcome == Outcome::Right) return text + "/>\n";
    text += ">\n";
    if (question.outcome == Outcome::Skipped) text += "      <skipped message=\"" + Xml(question.reason) + "\"/>\n";
    for (const std::string& finding : question.findings) {
        text += "      <failure message=\"" + Xml(finding) + "\"/>\n";
    }
    return text + "    </testcase>\n";
}

}  // namespace

std::string ReportForPeople(const std::deque<Question>& questions) {
    std::string text;
    Totals all;
    auto question = questions.begin();
    for (const auto& [family, totals] : ByFamily(questions)) {
        const std::string level = totals.wrong != 0   ? Red("WRONG  ")
                                  : totals.asked == 0 ? Dim("skipped")
                                                      : Green("ok     ");
        std::string name = family;
        name.resize(std::max(name.size(), kWidth), ' ');
        text += level + "  " + name + "  " + totals.InWords() + "\n";
        for (; question != questions.end() && question->family->name == family; ++question) {
            all.Add(*question);
            for (const std::string& finding : question->findings) {
                text += "           " + question->Name() + ": " + Printable(finding) + "\n";
            }
        }
    }
    return text + "in all: " + all.InWords() + "\n";
}

std::string ReportForPrograms(const std::string& directory, const std::deque<Question>& questions) {
    Json::Value document(Json::objectValue);
    document["directory"] = directory;
    document["operations"] = Json::Value(Json::arrayValue);
    for (const Question& question : questions) {
        Json::Value entry(Json::objectValue);
        entry["operation"] = question.Name();
        entry["outcome"] = question.outcome == Outcome::Skipped ? "skipped"
                           : question.outcome == Outcome::Right ? "right"
                                                                : "wrong";
        if (question.outcome == Outcome::Skipped) entry["reason"] = question.reason;
        entry["findings"] = Json::Value(Json::arrayValue);
        for (const std::string& finding : question.findings) entry["findings"].append(finding);
        if (!question.reply.isNull() && question.reply["ret"].isInt()) entry["status"] = question.reply["ret"];
        document["operations"].append(entry);
    }
    return WriteJson(document) + "\n";
}

std::string ReportAsJunit(const std::deque<Question>& questions) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"platform\">\n";
    auto question = questions.begin();
    for (const auto& [family, totals] : ByFamily(questions)) {
        text += "  <testsuite name=\"" + family + "\" tests=\"" + std::to_string(totals.asked + totals.skipped) +
                "\" failures=\"" + std::to_string(totals.wrong) + "\" skipped=\"" + std::to_string(totals.skipped) +
                "\" errors=\"0\">\n";
        for (; question != questions.end() && question->family->name == family; ++question) text += TestCase(*question);
        text += "  </testsuite>\n";
    }
    return text + "</testsuites>\n";
}

}  // namespace hbbtv::ctl
