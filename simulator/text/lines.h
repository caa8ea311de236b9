// The lines of files that people write, with their numbers, and warnings about them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace hbbtv::sim {

// Called with a sentence that begins with its place ("file:line: ") for each part of a file that is skipped.
using FileWarning = std::function<void(const std::string&)>;

// The lines of a text one after the other, without their ends (LF or CRLF) and without a byte order mark. Whatever is
// said about the text is said with its name and the number of a line. The text has to outlive the object.
class Lines {
  public:
    Lines(std::string_view text, std::string name, FileWarning warn);

    // On to the next line; false when there is none. One that is too long to mean anything reads as an empty one, with
    // a warning.
    bool Next();

    std::string_view Line() const { return mLine; }
    int Number() const { return mNumber; }

    // The line that stands so many lines further on; empty behind the end.
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

// Passes the first thousand warnings about a file on, and at its own end tells how many more there were.
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

// The bytes of a file; nothing and the reason, with the path, when it cannot be read or is larger than so many MiB.
std::optional<std::string> ReadIfPossible(const std::string& path, std::string& reason, size_t mostMebibytes = 16);

// The same; throws Fatal with the reason.
std::string ReadWhole(const std::string& path, size_t mostMebibytes = 16);

}  // namespace hbbtv::sim
