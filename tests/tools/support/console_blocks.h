// The examples of a document: blocks that begin with "```console". "$ " precedes a command; its output follows.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace hbbtv::test {

struct Example {
    std::string command;
    std::vector<std::string> output;  // a line "..." matches any lines
};

std::vector<Example> ConsoleExamples(const std::string& markdown);

// Compares the output of examples with the document. Handles, process numbers, times and counts of calls may differ. A
// handle of the document maps to the same handle of the run in all examples.
class ExampleComparison {
  public:
    // `directory` is the directory of the sockets of the run; that of the document is /tmp/tv.
    explicit ExampleComparison(std::string directory) : mDirectory(std::move(directory)) {}

    // Returns the command with the handles of the run.
    std::string Command(const Example& example) const;

    // Returns a description of the difference, or "".
    std::string Difference(const Example& example, const std::string& output);

  private:
    bool SameLine(const std::string& expected, const std::string& actual);

    const std::string mDirectory;
    std::map<std::string, std::string> mHandles;  // of the run, by those of the document
};

}  // namespace hbbtv::test
