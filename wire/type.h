// Types of values, as .hal files name them; the types of the wire map to them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hbbtv {

struct Type;

struct Parameter {
    std::string name;
    std::shared_ptr<const Type> type;
};

struct Enumerator {
    std::string name;
    int64_t value;
    std::string doc;
};

struct Type {
    enum class Kind { Bool, Integer, Real, Text, Vector, Struct, Enum, Callback };

    std::string name;  // as in the .hal file
    Kind kind = Kind::Text;
    std::string doc;                      // of a struct or an enumeration
    bool bytes = false;                   // Text: any bytes, not UTF-8
    int bits = 0;                         // Integer and Enum
    bool isSigned = true;                 // Integer and Enum
    std::shared_ptr<const Type> element;  // Vector
    std::vector<Parameter> fields;        // Struct
    std::vector<Enumerator> enumerators;  // Enum
};

// Returns the type of this name: one of `known`, a built-in one, a vector of such types, or, for "IName", a callback.
std::shared_ptr<const Type> MakeType(const std::string& name,
                                     const std::vector<std::shared_ptr<const Type>>& known = {});

// Returns the type of a string that is not text.
std::shared_ptr<const Type> MakeBytes();

// Sets size and sign from the name of an integer type.
void MakeInteger(Type& type, const std::string& name);

}  // namespace hbbtv
