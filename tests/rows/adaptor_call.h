// Calls of an adaptor's operations with values in JSON. Each parameter takes the next value, or holds a result.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace hbbtv::test {

// What a call gave.
struct Outcome {
    int status = 0;
    std::vector<Json::Value> results;
    std::vector<Json::Value> before;  // what the results were when the call began
};

using AdaptorCall = std::function<Outcome(const Json::Value& arguments)>;

inline const void* Handle(const Json::Value& bits) {
    return reinterpret_cast<const void*>(static_cast<uintptr_t>(bits.asUInt64()));
}

template <typename T>
T FromValue(const Json::Value& value) {
    if constexpr (std::is_same_v<T, bool>) return value.asBool();
    if constexpr (std::is_same_v<T, int>) return value.asInt();
    if constexpr (std::is_same_v<T, unsigned>) return value.asUInt();
    if constexpr (std::is_same_v<T, double>) return value.asDouble();
    if constexpr (std::is_same_v<T, std::string>) return value.asString();
    if constexpr (std::is_same_v<T, const char*>) return value.asCString();
    if constexpr (std::is_same_v<T, const void*>) return Handle(value);
    if constexpr (std::is_same_v<T, void*>) return const_cast<void*>(Handle(value));
    static_assert(!std::is_reference_v<T>);
}

template <typename T>
T ListFromValue(const Json::Value& list) {
    T values;
    for (const Json::Value& value : list) values.push_back(FromValue<typename T::value_type>(value));
    return values;
}

template <typename T>
Json::Value ToValue(const T& value) {
    if constexpr (std::is_same_v<T, void*>) {
        return Json::UInt64{reinterpret_cast<uintptr_t>(value)};
    } else {
        return value;
    }
}

inline Json::Value ToValue(const std::pair<int, int>& pair) {
    Json::Value value(Json::arrayValue);
    value.append(pair.first);
    value.append(pair.second);
    return value;
}

template <typename T>
Json::Value ToValue(const std::vector<T>& list) {
    Json::Value value(Json::arrayValue);
    for (const T& element : list) value.append(ToValue(element));
    return value;
}

// What a variable for a result holds before the call.
template <typename T>
T Before() {
    if constexpr (std::is_same_v<T, int>) return -77777;
    if constexpr (std::is_same_v<T, unsigned>) return 77777;
    if constexpr (std::is_same_v<T, bool>) return true;
    if constexpr (std::is_same_v<T, double>) return 0.0625;
    if constexpr (std::is_same_v<T, std::string>) return "before";
    if constexpr (std::is_same_v<T, void*>) return reinterpret_cast<void*>(0xbef0);
    if constexpr (std::is_same_v<T, std::vector<int>>) return {-77777};
    if constexpr (std::is_same_v<T, std::vector<std::pair<int, int>>>) return {{-77777, -77777}};
}

template <typename... A>
void IgnoreEvent(A...) {}

template <typename... A>
void SetReceiver(void (*&receiver)(A...)) {
    receiver = &IgnoreEvent<A...>;
}

// A parameter that takes a value; a receiver of events takes none.
template <typename P>
struct ParameterOf {
    std::decay_t<P> value{};

    ParameterOf(const Json::Value& arguments, Json::ArrayIndex& next) {
        using T = std::decay_t<P>;
        if constexpr (std::is_function_v<std::remove_pointer_t<T>>) {
            SetReceiver(value);
        } else if constexpr (std::is_class_v<T> && !std::is_same_v<T, std::string>) {
            value = ListFromValue<T>(arguments[next++]);
        } else {
            value = FromValue<T>(arguments[next++]);
        }
    }
    const std::decay_t<P>& Get() { return value; }
    void AppendTo(std::vector<Json::Value>&) const {}
};

// A parameter for a result.
template <typename T>
struct ResultOf {
    T value = Before<T>();

    ResultOf(const Json::Value&, Json::ArrayIndex&) {}
    void AppendTo(std::vector<Json::Value>& results) const { results.push_back(ToValue(value)); }
};

template <typename T>
struct ParameterOf<T&> : ResultOf<T> {
    using ResultOf<T>::ResultOf;
    T& Get() { return this->value; }
};

template <typename T>
struct ParameterOf<const T&> : ParameterOf<T> {
    using ParameterOf<T>::ParameterOf;
};

template <>
struct ParameterOf<int*> : ResultOf<int> {
    using ResultOf<int>::ResultOf;
    int* Get() { return &value; }
};

template <typename Adaptor, typename... P>
AdaptorCall CallOf(int (Adaptor::*operation)(P...)) {
    return [operation](const Json::Value& arguments) {
        [[maybe_unused]] Json::ArrayIndex next = 0;
        std::tuple<ParameterOf<P>...> parameters{ParameterOf<P>(arguments, next)...};
        return std::apply(
            [operation](auto&... parameter) {
                Outcome outcome;
                (parameter.AppendTo(outcome.before), ...);
                outcome.status = (Adaptor::GetInstance()->*operation)(parameter.Get()...);
                (parameter.AppendTo(outcome.results), ...);
                return outcome;
            },
            parameters);
    };
}

// Returns how many values the operation's parameters take.
template <typename P>
constexpr bool TakesValue() {
    using T = std::decay_t<P>;
    if constexpr (std::is_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>) return false;
    return !std::is_same_v<T, int*> && !std::is_function_v<std::remove_pointer_t<T>>;
}

template <typename Adaptor, typename... P>
int CountValues(int (Adaptor::*)(P...)) {
    return (0 + ... + (TakesValue<P>() ? 1 : 0));
}

}  // namespace hbbtv::test
