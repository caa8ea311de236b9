// The rows that the benchmark prints, and the machine on which they were measured.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace hbbtv::bench {

enum class Unit { kMicroseconds, kMilliseconds, kPerSecond, kKiB, kInstructions };

struct Target {
    bool atLeast;  // else: at most
    double bound;
};

struct Row {
    std::string name;
    Unit unit;
    double value;
    std::optional<double> ratio = {};   // to the row that it is compared with
    std::optional<Target> target = {};  // of the ratio if there is one, else of the value

    // How many times better than its target it is; 1 without one.
    double Margin() const;
    bool Met() const { return Margin() >= 1; }
};

// Prints the machine and the rows.
void PrintTable(const std::vector<Row>& rows);
void PrintJson(const std::vector<Row>& rows);

// Returns the rows that PrintJson() has printed; nothing for another text.
std::optional<std::vector<Row>> ReadRows(const std::string& json);

}  // namespace hbbtv::bench
