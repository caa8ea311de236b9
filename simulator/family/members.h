// Helpers of families: handles, positions and enumerations in requests, handles in replies, words of commands, and
// replies to the families' own requests.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/text/pointer_text.h"
#include "core/error.h"
#include "core/handles.h"
#include "family/arguments.h"
#include "family/family.h"
#include "text/text.h"

namespace hbbtv::sim {

// Returns the object that the member names. `kind` ends the message that refuses any other handle.
template <typename T>
std::shared_ptr<T> Find(const HandleTable<T>& table, const Arguments& in, const char* member, const char* kind) {
    const auto object = table.Find(in.Pointer(member));
    if (!object) throw Refused("\"" + std::string(member) + "\" does not name a " + kind);
    return object;
}

template <typename T>
void Remove(HandleTable<T>& table, const Arguments& in, const char* member, const char* kind) {
    Find(table, in, member, kind);
    table.Remove(in.Pointer(member));
}

template <typename T>
std::string Text(HandleTable<T>& table, const std::shared_ptr<T>& object) {
    return PointerText(table.HandleOf(object));
}

template <typename List>
const typename List::value_type& At(const List& list, int64_t index) {
    if (index >= 0 && static_cast<uint64_t>(index) < list.size()) return list[static_cast<size_t>(index)];
    throw Refused("index " + std::to_string(index) + " of " + std::to_string(list.size()));
}

// Returns a value of an enumeration from 0 to `last`. `kind` is part of the message that refuses any other.
template <typename Enum>
Enum Choice(int number, Enum last, const char* kind) {
    if (number >= 0 && number <= static_cast<int>(last)) return static_cast<Enum>(number);
    throw Refused("there is no " + std::string(kind) + " " + std::to_string(number));
}

inline ComponentType ReadComponentType(int number) {
    return Choice(number, ComponentType::Subtitle, "component type");
}

// Returns the only word of a command.
inline const std::string& Word(const Words& words) {
    if (words.size() != 1) throw WrongWords();
    return words[0];
}

// Returns whether the command has the first of the two words.
inline bool IsFirst(const Words& words, const char* first, const char* second) {
    if (Word(words) != first && Word(words) != second) throw WrongWords();
    return Word(words) == first;
}

inline void RequireNone(const Words& words) {
    if (!words.empty()) throw WrongWords();
}

inline std::optional<int> Number(const std::string& word, uint32_t largest = 99999) {
    const auto number = ReadNumber(word, 10, largest);
    return number ? std::optional<int>(static_cast<int>(*number)) : std::nullopt;
}

// Returns whether the reply reports success.
inline bool WentWell(const Json::Value& reply) {
    return reply.isObject() && reply["ret"].isInt() && reply["ret"].asInt() == 0;
}

inline std::optional<int> IntIn(const Json::Value& reply, const char* member) {
    if (!WentWell(reply) || !reply[member].isInt()) return std::nullopt;
    return reply[member].asInt();
}

}  // namespace hbbtv::sim
