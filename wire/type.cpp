#include "wire/type.h"

#include <cctype>
#include <stdexcept>

namespace hbbtv {

namespace {

struct IntegerType {
    const char* name;
    int bits;
    bool isSigned;
};
constexpr IntegerType kIntegers[] = {{"int8_t", 8, true},     {"int16_t", 16, true},  {"int32_t", 32, true},
                                     {"int64_t", 64, true},   {"uint8_t", 8, false},  {"uint16_t", 16, false},
                                     {"uint32_t", 32, false}, {"uint64_t", 64, false}};

}  // namespace

void MakeInteger(Type& type, const std::string& name) {
    for (const IntegerType& integer : kIntegers) {
        if (name != integer.name) continue;
        type.bits = integer.bits;
        type.isSigned = integer.isSigned;
        return;
    }
    throw std::logic_error("no type " + name);
}

std::shared_ptr<const Type> MakeType(const std::string& name, const std::vector<std::shared_ptr<const Type>>& known) {
    for (const auto& type : known) {
        if (type->name == name) return type;
    }
    auto type = std::make_shared<Type>();
    type->name = name;
    if (name == "bool") {
        type->kind = Type::Kind::Bool;
    } else if (name == "string") {
        type->kind = Type::Kind::Text;
    } else if (name == "float" || name == "double") {
        type->kind = Type::Kind::Real;
    } else if (name.rfind("vec<", 0) == 0) {
        type->kind = Type::Kind::Vector;
        type->element = MakeType(name.substr(4, name.size() - 5), known);
    } else if (name.size() > 1 && name[0] == 'I' && std::isupper(static_cast<unsigned char>(name[1]))) {
        type->kind = Type::Kind::Callback;
    } else {
        type->kind = Type::Kind::Integer;
        MakeInteger(*type, name);
    }
    return type;
}

std::shared_ptr<const Type> MakeBytes() {
    auto type = std::make_shared<Type>(*MakeType("string"));
    type->bytes = true;
    return type;
}

}  // namespace hbbtv
