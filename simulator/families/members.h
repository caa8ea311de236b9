// How families read the handles and positions of a request and write the handles of a reply, and the words of a
// command.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/arguments.h"
#include "core/handles.h"

namespace hbbtv::sim {

// The object that the member names. `kind` ends the sentence that refuses any other handle.
template <typename T>
std::shared_ptr<T> Find(const HandleTable<T>& table, const Arguments& in, const char* member, const char* kind) {
    const auto object = table.Find(in.Pointer(member));
    if (!object) throw Refused("\"" + std::string(member) + "\" names no " + kind);
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

// The one word of a command, empty when there are more or none.
inline std::string Word(const std::vector<std::string>& words) {
    return words.size() == 1 ? words[0] : "";
}

inline std::optional<int> Number(const std::string& word) {
    const bool digits = !word.empty() && word.size() <= 5 && word.find_first_not_of("0123456789") == std::string::npos;
    if (!digits) return std::nullopt;
    return std::stoi(word);
}

}  // namespace hbbtv::sim
