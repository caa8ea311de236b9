// Numbers of a JSON document that are too small for a double, such as 1e-320. jsoncpp reads numbers with the C++
// library: libstdc++ returns the nearest double, libc++, which a television has, refuses the document. With this class,
// both return the nearest double.
#pragma once

#include <json/json.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tolm {

class SmallNumbers {
  public:
    // Notes the word from `word` to `wordEnd` of the text that begins at `text`, if it begins with such a number. Words
    // must be noted in the order of the text.
    void Note(const char* text, const char* word, const char* wordEnd);

    bool IsEmpty() const { return mNumbers.empty(); }

    // Returns the text with 0.0 instead of each number. All other characters keep their places.
    std::string Replaced(const char* text, const char* textEnd) const;

    // Puts the numbers into the document that jsoncpp's reader has created from the replaced text.
    void Restore(Json::Value& document) const;

  private:
    struct Number {
        size_t offset;
        size_t size;
        double value;
    };

    std::vector<Number> mNumbers;
};

}  // namespace tolm
