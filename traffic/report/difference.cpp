#include "traffic/report/difference.h"

#include <cstdio>
#include <set>

#include "common/text/printable.h"

namespace hbbtv::traffic {

namespace {

using Operation = Statistics::Operation;

const Operation* Find(const Statistics& statistics, const std::string& name) {
    const auto found = statistics.Operations().find(name);
    return found == statistics.Operations().end() ? nullptr : &found->second;
}

std::set<std::string> NamesOf(const Statistics& before, const Statistics& after) {
    std::set<std::string> names;
    for (const Statistics* side : {&before, &after}) {
        for (const auto& [name, operation] : side->Operations()) names.insert(name);
    }
    return names;
}

std::string Row(const Operation* operation, uint64_t (*number)(const Operation&)) {
    return operation == nullptr ? "-" : std::to_string(number(*operation));
}

std::string Time(const Operation* operation, double part) {
    if (operation == nullptr || operation->durations.Count() == 0) return "-";
    char text[32];
    std::snprintf(text, sizeof(text), "%.3f", static_cast<double>(operation->durations.Percentile(part)) / 1000);
    return text;
}

std::string Change(const Operation* before, const Operation* after) {
    if (before == nullptr) return "only after";
    if (after == nullptr) return "only before";
    const uint64_t old = before->durations.Percentile(0.5);
    const uint64_t current = after->durations.Percentile(0.5);
    if (old == 0 || current == 0) return "";
    const double ratio = static_cast<double>(current) / static_cast<double>(old);
    if (ratio > 0.8 && ratio < 1.25) return "";
    char text[48];
    std::snprintf(text, sizeof(text), "%.1f times as %s", ratio > 1 ? ratio : 1 / ratio, ratio > 1 ? "slow" : "fast");
    return text;
}

}  // namespace

std::string DifferenceText(const Statistics& before, const Statistics& after) {
    std::string text =
        "           calls           errors            p50 ms            p99 ms\n"
        "  before   after  before  after    before    after    before    after  operation\n";
    for (const std::string& name : NamesOf(before, after)) {
        const Operation* const old = Find(before, name);
        const Operation* const current = Find(after, name);
        const auto calls = [](const Operation& operation) { return operation.calls; };
        const auto errors = [](const Operation& operation) { return operation.errors; };
        char row[200];
        std::snprintf(row, sizeof(row), "%8s %7s %7s %6s %9s %8s %9s %8s  ", Row(old, calls).c_str(),
                      Row(current, calls).c_str(), Row(old, errors).c_str(), Row(current, errors).c_str(),
                      Time(old, 0.5).c_str(), Time(current, 0.5).c_str(), Time(old, 0.99).c_str(),
                      Time(current, 0.99).c_str());
        const std::string change = Change(old, current);
        text += row + Printable(name) + (change.empty() ? "" : "  (" + change + ")") + "\n";
    }
    return text;
}

Json::Value DifferenceJson(const Statistics& before, const Statistics& after) {
    Json::Value document(Json::objectValue);
    Json::Value& operations = document["operations"] = Json::Value(Json::arrayValue);
    for (const std::string& name : NamesOf(before, after)) {
        Json::Value one(Json::objectValue);
        one["operation"] = name;
        if (const Operation* old = Find(before, name)) one["before"] = Statistics::Json(*old);
        if (const Operation* current = Find(after, name)) one["after"] = Statistics::Json(*current);
        operations.append(one);
    }
    return document;
}

}  // namespace hbbtv::traffic
