// The members of a request, and the text of one: byte for byte that of Json::Value::toStyledString(), but written
// without a document.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace tolm {

// Strings and lists are not copied, so it is valid only within the expression that contains it. Keys are literals.
struct Member {
    enum class Kind { kInt, kUInt, kBool, kReal, kText, kPointer, kNumberedInts, kNumberedPointers, kArray };

    const char* key;
    Kind kind;
    union {
        int asInt;
        unsigned asUInt;
        bool asBool;
        double asReal;
        const std::string* asText;
        const void* asPointer;
        const std::vector<int>* asInts;
        const std::vector<void*>* asPointers;
        const std::vector<std::string>* asElements;
    };
};

Member Int(const char* key, int value);
Member UInt(const char* key, unsigned value);
Member Bool(const char* key, bool value);
Member Real(const char* key, double value);
Member Text(const char* key, const std::string& value);
Member Pointer(const char* key, const void* value);
Member NumberedInts(const std::vector<int>& values);                         // k0, k1, ..., see ToNumberedInts()
Member NumberedPointers(const char* key, const std::vector<void*>& values);  // key0, key1, ...
Member Array(const char* key, const std::vector<std::string>& elements);  // each is an Element(); null if there is none
template <typename T>
Member Int(const char* key, T value) = delete;
template <typename T>
Member UInt(const char* key, T value) = delete;
template <typename T>
Member Bool(const char* key, T value) = delete;
template <typename T>
Member Real(const char* key, T value) = delete;

// Returns the name of a numbered int.
std::string NumberedKey(size_t index);

// An object. Its members are sorted by key; of several with the same key, the last one counts. Not thread-safe.
class ObjectText {
  public:
    ObjectText();

    void Add(const Member& member);

    // Returns the text as an element of an array that is itself a member.
    std::string AsElement();

    // Returns the text as a document, which ends with a line break.
    std::vector<unsigned char> AsDocument();

  private:
    // The place of a member's `"key" : value` in mText.
    struct Entry {
        size_t begin;
        size_t keySize;
        size_t end;
    };

    template <typename Value>
    void AddValue(std::string_view key, const Value& value);
    void BeginEntry(std::string_view key);
    void EndEntry();
    std::string_view KeyOf(const Entry& entry) const;
    void Sort();
    template <typename Bytes>
    Bytes Joined(size_t depth, std::string_view end);

    std::string mText;
    std::vector<Entry> mEntries;
};

// Returns the text of an element of Array().
std::string Element(std::initializer_list<Member> members);

}  // namespace tolm
