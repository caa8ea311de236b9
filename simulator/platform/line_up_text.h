// What the line-up formats that are made of lines have in common: lines with their numbers, the words and numbers in
// them, text fit to be shown, and components for services of which little is known.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/line_up.h"

namespace hbbtv::sim {

// The lines of a text one after the other, without their ends (LF or CRLF) and without a byte order mark. Whatever is
// said about the text is said with its name and the number of a line. The text has to outlive the object.
class Lines {
  public:
    Lines(std::string_view text, std::string name, LineUpWarning warn);

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
    LineUpWarning mWarn;
    size_t mNext = 0;
    std::string_view mLine;
    int mNumber = 0;
};

// Passes the first thousand warnings about a file on, and at its own end tells how many more there were.
class FewWarnings {
  public:
    FewWarnings(std::string name, LineUpWarning warn) : mName(std::move(name)), mWarn(std::move(warn)) {}
    ~FewWarnings();
    FewWarnings(const FewWarnings&) = delete;
    FewWarnings& operator=(const FewWarnings&) = delete;

    void operator()(const std::string& warning);

  private:
    std::string mName;
    LineUpWarning mWarn;
    int mCount = 0;
};

// The bytes of a file; throws BadLineUp when it cannot be read or is larger than so many MiB.
std::string ReadWhole(const std::string& path, size_t mostMebibytes = 16);

bool StartsWith(std::string_view text, std::string_view start);

// UTF-8 files may begin with a byte order mark, which says nothing.
std::string_view WithoutByteOrderMark(std::string_view text);

// Without blanks at both ends.
std::string_view Trimmed(std::string_view text);

std::vector<std::string_view> Split(std::string_view text, char separator);

// A number that is the whole word, from 0 to `largest`.
std::optional<uint32_t> ReadNumber(std::string_view word, int base, uint32_t largest);

// As UTF-8 that can be shown: bytes that are no UTF-8 are taken as Latin-1; control characters go, those by which DVB
// marks emphasis among them; blanks at both ends go.
std::string ReadableText(std::string_view raw);

// The start of an UTF-8 text that has room in so many bytes; it does not end within a character.
std::string_view StartOf(std::string_view text, size_t room);

// One line of what came from outside, in quotes, for messages.
std::string Quotation(std::string_view text);

// Adds a component with the next free tag. The PID is 0 when it is not known, and so the language is "und".
void AddPicture(Service& service, const std::string& encoding, int pid);
void AddSound(Service& service, const std::string& encoding, int pid);
void AddSubtitle(Service& service, const std::string& encoding, int pid);

}  // namespace hbbtv::sim
