#include "table.h"

#include <json/json.h>
#include <sys/utsname.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <thread>

namespace hbbtv::bench {

namespace {

struct Machine {
    std::string processor;
    unsigned processors;
    long memoryMiB;
    std::string kernel;
    double load;  // when the table is printed, over a minute
};

// Returns what follows `name` and a colon in a file of the kernel, or nothing.
std::string ValueOf(const char* file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        const size_t colon = line.find(':');
        if (line.rfind(name, 0) != 0 || colon == std::string::npos) continue;
        return line.substr(line.find_first_not_of(" \t", colon + 1));
    }
    return "";
}

Machine ThisMachine() {
    utsname system = {};
    uname(&system);
    double load = 0;
    getloadavg(&load, 1);
    const std::string model = ValueOf("/proc/cpuinfo", "model name");
    return {model.empty() ? system.machine : model, std::thread::hardware_concurrency(),
            std::atol(ValueOf("/proc/meminfo", "MemTotal").c_str()) / 1024,
            std::string(system.sysname) + " " + system.release, load};
}

constexpr Unit kUnits[] = {Unit::kMicroseconds, Unit::kMilliseconds, Unit::kPerSecond, Unit::kKiB, Unit::kInstructions};

const char* NameOf(Unit unit) {
    switch (unit) {
        case Unit::kMicroseconds:
            return "us";
        case Unit::kMilliseconds:
            return "ms";
        case Unit::kPerSecond:
            return "/s";
        case Unit::kKiB:
            return "KiB";
        case Unit::kInstructions:
            return "instr";
    }
    return "";
}

Unit UnitNamed(const std::string& name) {
    return *std::find_if(std::begin(kUnits), std::end(kUnits) - 1, [&](Unit unit) { return name == NameOf(unit); });
}

bool HasFraction(Unit unit) {
    return unit == Unit::kMicroseconds || unit == Unit::kMilliseconds;
}

}  // namespace

double Row::Margin() const {
    if (!target) return 1;
    const double measured = ratio.value_or(value);
    return target->atLeast ? measured / target->bound : target->bound / measured;
}

void PrintTable(const std::vector<Row>& rows) {
    const Machine machine = ThisMachine();
    std::printf("%s, %u processors, %ld MiB, %s, load %.2f\n\n", machine.processor.c_str(), machine.processors,
                machine.memoryMiB, machine.kernel.c_str(), machine.load);
    std::printf("%-54s %16s %8s %12s\n", "", "median", "ratio", "target");
    for (const Row& row : rows) {
        std::printf("%-54s %10.*f %-5s", row.name.c_str(), HasFraction(row.unit) ? 1 : 0, row.value, NameOf(row.unit));
        if (row.ratio) {
            std::printf(" %8.2f", *row.ratio);
        } else if (row.target) {
            std::printf(" %8s", "");
        }
        if (row.target) {
            std::printf("  %s %*.*f%s", row.target->atLeast ? ">=" : "<=", 9, row.ratio ? 2 : 0, row.target->bound,
                        row.Met() ? "" : "  MISSED");
        }
        std::printf("\n");
    }
}

void PrintJson(const std::vector<Row>& rows) {
    const Machine machine = ThisMachine();
    Json::Value document(Json::objectValue);
    Json::Value& described = document["machine"];
    described["processor"] = machine.processor;
    described["processors"] = machine.processors;
    described["memory_mib"] = Json::Int64{machine.memoryMiB};
    described["kernel"] = machine.kernel;
    described["load"] = machine.load;
    document["rows"] = Json::Value(Json::arrayValue);
    for (const Row& row : rows) {
        Json::Value written(Json::objectValue);
        written["name"] = row.name;
        written["unit"] = NameOf(row.unit);
        written["median"] = row.value;
        if (row.ratio) written["ratio"] = *row.ratio;
        if (row.target) written[row.target->atLeast ? "at_least" : "at_most"] = row.target->bound;
        written["met"] = row.Met();
        document["rows"].append(written);
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    std::cout << Json::writeString(builder, document) << "\n";
}

std::optional<std::vector<Row>> ReadRows(const std::string& json) {
    Json::Value document;
    if (!Json::Reader().parse(json, document) || !document.isObject()) return {};
    std::vector<Row> rows;
    for (const Json::Value& written : document["rows"]) {
        Row row{written["name"].asString(), UnitNamed(written["unit"].asString()), written["median"].asDouble()};
        if (written.isMember("ratio")) row.ratio = written["ratio"].asDouble();
        for (const char* const bound : {"at_least", "at_most"}) {
            if (written.isMember(bound))
                row.target = Target{bound == std::string("at_least"), written[bound].asDouble()};
        }
        rows.push_back(row);
    }
    return rows;
}

}  // namespace hbbtv::bench
