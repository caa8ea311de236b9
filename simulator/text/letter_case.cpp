#include "text/letter_case.h"

#include <cstring>

namespace hbbtv::sim {

namespace {

bool Within(unsigned c, unsigned first, unsigned last) {
    return c >= first && c <= last;
}

// For a letter of two bytes. Each lower-case letter has two bytes as well, so a string keeps its length.
unsigned Small(unsigned c) {
    const bool latin1 = Within(c, 0xC0, 0xDE) && c != 0xD7;
    const bool greek = Within(c, 0x391, 0x3A9) && c != 0x3A2;
    if (latin1 || greek || Within(c, 0x410, 0x42F)) return c + 0x20;
    if (Within(c, 0x400, 0x40F)) return c + 0x50;
    if (c == 0x178) return 0xFF;
    // Upper and lower case alternate, with upper case on even or on odd numbers. The dotted I has no such pair.
    const bool evenCapitals = Within(c, 0x100, 0x12F) || Within(c, 0x132, 0x137) || Within(c, 0x14A, 0x177) ||
                              Within(c, 0x218, 0x21B) || Within(c, 0x490, 0x491);
    const bool oddCapitals = Within(c, 0x139, 0x148) || Within(c, 0x179, 0x17E);
    if ((evenCapitals && c % 2 == 0) || (oddCapitals && c % 2 == 1)) return c + 1;
    return c;
}

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

}  // namespace

std::string SmallLetters(const std::string& text) {
    std::string small = text;
    for (size_t i = 0; i < small.size(); ++i) {
        const unsigned char first = Byte(small[i]);
        if (Within(first, 'A', 'Z')) small[i] = static_cast<char>(first + 0x20);
        if (!Within(first, 0xC2, 0xDF) || i + 1 == small.size() || (Byte(small[i + 1]) & 0xC0) != 0x80) continue;
        const unsigned letter = Small((first & 0x1Fu) << 6 | (Byte(small[i + 1]) & 0x3Fu));
        small[i] = static_cast<char>(0xC0 | letter >> 6);
        small[++i] = static_cast<char>(0x80 | (letter & 0x3F));
    }
    return small;
}

// memmem runs in linear time for any input.
bool Contains(const std::string& text, const std::string& small) {
    if (small.size() > text.size()) return false;
    const std::string within = SmallLetters(text);
    return memmem(within.data(), within.size(), small.data(), small.size()) != nullptr;
}

}  // namespace hbbtv::sim
