// The lines of files written by people, with their numbers, and warnings about them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace hbbtv::sim {

// Called for each part of a file that is skipped, with a message that begins with its place ("file:line: ").
using FileWarning = std::function<void(const std::string&)>;

// Iterates over the lines of a string, without line ends (LF or CRLF) and byte order mark. Messages have the name and a
// line number. The string must outlive the object.
class Lines {
  public:
    Lines(std::string_view text, std::string name, FileWarning warn);

    // Moves to the next line; returns false at the end. A line that is too long reads as an empty one, with a warning.
    bool Next();

    std::string_view Line() const { return mLine; }
    int Number() const { return mNumber; }

    // Returns the line that many lines ahead; empty after the end.
    std::string_view Ahead(int count) const;

    void Warn(const std::string& what) const { Warn(mNumber, what); }
    void Warn(int number, const std::string& what) const;
    [[noreturn]] void Refuse(const std::string& reason) const;

  private:
    std::string_view Cut(size_t& at) const;

    std::string_view mText;
    std::string mName;
    FileWarning mWarn;
    size_t mNext = 0;
    std::string_view mLine;
    int mNumber = 0;
};

// Passes on the first thousand warnings about a file; the destructor reports how many more there were.
class FewWarnings {
  public:
    FewWarnings(std::string name, FileWarning warn) : mName(std::move(name)), mWarn(std::move(warn)) {}
    ~FewWarnings();
    FewWarnings(const FewWarnings&) = delete;
    FewWarnings& operator=(const FewWarnings&) = delete;

    void operator()(const std::string& warning);

  private:
    std::string mName;
    FileWarning mWarn;
    int mCount = 0;
};

// Returns the bytes of a file; nothing and the reason, with the path, if it cannot be read or is larger than that many
// MiB.
std::optional<std::string> ReadIfPossible(const std::string& path, std::string& reason, size_t mostMebibytes = 16);

// The same; throws Fatal with the reason.
std::string ReadWhole(const std::string& path, size_t mostMebibytes = 16);

}  // namespace hbbtv::sim
