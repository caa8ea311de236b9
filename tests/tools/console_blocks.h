// The examples of a document: blocks that begin with "```console", in which "$ " stands in front of what is typed and
// its output follows.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace hbbtv::test {

struct Example {
    std::string command;
    std::vector<std::string> output;  // a line "..." stands for any lines
};

std::vector<Example> ConsoleExamples(const std::string& markdown);

// Compares what examples print with what they printed. What differs from run to run may: handles, process numbers,
// times, counts of calls. A handle of the document stands for the same handle of the run from then on.
class ExampleComparison {
  public:
    // `directory` is where the run has its sockets; the document has them in /tmp/tv.
    explicit ExampleComparison(std::string directory) : mDirectory(std::move(directory)) {}

    // The command with the run's handles in place of the document's.
    std::string Command(const Example& example) const;

    // Empty when the output is what the example says, else what differs.
    std::string Difference(const Example& example, const std::string& output);

  private:
    bool SameLine(const std::string& expected, const std::string& actual);

    const std::string mDirectory;
    std::map<std::string, std::string> mHandles;  // of the run, by those of the document
};

}  // namespace hbbtv::test
