// Measurements that are repeated in rounds.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "table.h"

namespace hbbtv::bench {

// Calls `once` so often, and returns how long one call took.
double MicrosecondsEach(size_t count, const std::function<void()>& once);

struct Measurement {
    std::string name;
    Unit unit;
    std::string against;  // name of the measurement that it is compared with, or ""
    std::optional<Target> target;
    std::function<double()> round;
    std::vector<double> rounds = {};
};

// Measurements alternate, so that other load of the machine affects all of them. Ends early when the user interrupts.
void Run(std::vector<Measurement>& measurements, int rounds);

// Returns a row for each measurement that has been made.
std::vector<Row> RowsOf(const std::vector<Measurement>& measurements);

// Lets SIGINT and SIGTERM end the program after the current round. See also Shielded().
void TakeInterrupts();
bool Interrupted();

// Ends the program if something does not work that is to be measured.
void Expect(bool ok, const char* what);

// Runs this thread, and what it starts, on one processor; or on all of them.
void Pin();
void Unpin();

}  // namespace hbbtv::bench
