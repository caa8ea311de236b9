#include "finished_run.h"

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace hbbtv::test {

std::string FinishedRun::Text() const {
    return "exit code " + (exit ? std::to_string(*exit) : "none") + "\n" + output + errors;
}

FinishedRun RunToEnd(const std::vector<std::string>& argv, const std::optional<std::string>& input,
                     const std::vector<std::string>& environment, std::chrono::milliseconds patience) {
    static std::atomic<int> number{0};
    const std::string errors = std::string(std::getenv("TMPDIR")) + "/errors-" + std::to_string(++number);
    std::vector<std::string> command{"/bin/sh", "-c", "errors=$0; exec \"$@\" 2>\"$errors\"", errors};
    command.insert(command.end(), argv.begin(), argv.end());
    ChildProcess child(command, environment);
    if (input) {
        child.Write(*input);
        child.CloseInput();
    }
    FinishedRun run;
    run.exit = child.WaitForExit(patience);
    run.output = child.Output();
    std::ifstream file(errors);
    run.errors.assign(std::istreambuf_iterator<char>(file), {});
    std::remove(errors.c_str());
    return run;
}

}  // namespace hbbtv::test
