#include "package_values.h"

#include "wire/values.h"

namespace hbbtv::fuzz {

Json::Value UsualValue(const Type& type) {
    Json::Value value;
    switch (type.kind) {
        case Type::Kind::Bool:
            return true;
        case Type::Kind::Integer:
            return 1;
        case Type::Kind::Enum:
            return type.enumerators.empty() ? Json::Int64{1} : Json::Int64{type.enumerators.back().value};
        case Type::Kind::Real:
            return 0.5;
        case Type::Kind::Text:
            return "text";
        case Type::Kind::Callback:
            return "@listen";
        case Type::Kind::Vector:
            value = Json::Value(Json::arrayValue);
            for (int i = 0; i < 2; ++i) value.append(UsualValue(*type.element));
            return value;
        case Type::Kind::Struct:
            value = Json::Value(Json::objectValue);
            for (const Parameter& field : type.fields) value[field.name] = UsualValue(*field.type);
            return value;
    }
    return value;
}

Json::Value UsualValues(const std::vector<Parameter>& parameters) {
    return FittingValues(parameters, Json::Value());
}

Json::Value FittingValues(const std::vector<Parameter>& parameters, const Json::Value& values) {
    Json::Value fitting(Json::arrayValue);
    for (Json::ArrayIndex i = 0; i < parameters.size(); ++i) {
        const Type& type = *parameters[i].type;
        try {
            if (!values.isArray() || i >= values.size()) throw BadValue("missing");
            fitting.append(FromJsonValue(type, values[i]));
        } catch (const BadValue&) {
            fitting.append(UsualValue(type));
        }
    }
    return fitting;
}

const Json::Value* OperationOf(const Package::QualifiedMethod& method) {
    const WireFamily* const family = Package::Get().FamilyOf(*method.interface);
    return family == nullptr ? nullptr : family->OperationOf(method.method->name);
}

// Never destroyed: callbacks may arrive until the process ends.
UsualClient& UsualClient::Get() {
    static UsualClient* const client = new UsualClient;
    return *client;
}

Json::Value UsualClient::Take(const char* interface, const char* method, Json::Value) {
    const Manner manner = mManner;
    if (manner == Manner::kDies) return Died();
    const auto& results = Package::Get().FindInterface(interface).Find(method)->results;
    // A client of another process whose result callback is missing has failed; in this process, nothing checks it.
    if (manner == Manner::kDoesNotAnswer && results.size() > 1) return NoAnswer();
    return UsualValues(results);
}

}  // namespace hbbtv::fuzz
