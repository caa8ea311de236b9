// How a service method reaches its adaptor and answers its caller. A method that only forwards is one statement:
//
//     Return<void> VideoBroadcast::GetVolume(int64_t vb, GetVolume_cb _hidl_cb) {
//         return Answer(_hidl_cb, &Adaptor::GetVolume, Handle(vb));
//     }
//
// It calls the adaptor operation with the arguments and with value-initialised results, then answers the caller exactly
// once: the HIDL stub ends the process if the answer is missing or repeated. Results that HIDL does not carry are
// dropped, and the status is -1.
#pragma once

#include <hidl/HidlSupport.h>
#include <hidl/Status.h>

#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "utils/include/tolm_hidl_transaction.h"

namespace vantorel::hardware::hbbtv::implementation {

// Returns the platform's pointer in a handle or context: its low 32 bits, also on 64-bit builds.
inline void* Handle(int64_t handle) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(static_cast<uint32_t>(handle)));
}

// Returns the handle or context of the platform's pointer. Its high half is zero.
inline int64_t ToHandle(const void* pointer) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

namespace details {

// Converts a client's argument to the adaptor's type.
template <typename Parameter, typename Argument>
Parameter ToAdaptor(const Argument& argument) {
    static_assert(std::is_pointer_v<Parameter> == std::is_pointer_v<Argument>, "a handle needs Handle()");
    if constexpr (std::is_enum_v<Argument>) {
        return static_cast<std::underlying_type_t<Argument>>(argument);
    } else {
        return argument;
    }
}

// Converts an adaptor's result to the client's type. Strings and vectors are not copied.
template <typename Result>
Result ToHidl(const void* pointer) {
    return ToHandle(pointer);
}

template <typename Result>
Result ToHidl(const std::string& text) {
    ::android::hardware::hidl_string result;
    result.setToExternal(text.c_str(), text.size());
    return result;
}

template <typename Result, typename Element>
Result ToHidl(std::vector<Element>& elements) {
    Result result;
    result.setToExternal(elements.data(), elements.size());
    return result;
}

template <typename Result, typename Value, typename = std::enable_if_t<std::is_arithmetic_v<Value>>>
Result ToHidl(const Value& value) {
    return static_cast<Result>(value);
}

// Calls the operation with all of `values`: the arguments, then the results.
template <typename Adaptor, typename... Parameters, typename Values>
int CallAdaptor(int (Adaptor::*operation)(Parameters...), Values& values) {
    Adaptor* adaptor = Adaptor::GetInstance();
    if (adaptor == nullptr) return -1;
    return std::apply([&](auto&... value) { return (adaptor->*operation)(value...); }, values);
}

// Copies the arguments to the front of `values`.
template <typename Values, size_t... Index, typename... Arguments>
void SetArguments(Values& values, std::index_sequence<Index...>, const Arguments&... arguments) {
    ((std::get<Index>(values) = ToAdaptor<std::tuple_element_t<Index, Values>>(arguments)), ...);
}

// Answers the caller: with -1 and empty results if HIDL does not carry these results.
template <typename... Results>
void AnswerOnce(const std::function<void(int32_t, Results...)>& callback, int status,
                const std::decay_t<Results>&... results) {
    if (::tolm::HidlCarries((size_t{0} + ... + ::tolm::HidlSize(results)))) {
        callback(status, results...);
    } else {
        callback(-1, std::decay_t<Results>()...);
    }
}

// Answers with the values after the first `kFirst` of `values`.
template <size_t kFirst, typename... Results, typename Values, size_t... Index>
void AnswerWith(const std::function<void(int32_t, Results...)>& callback, int status, Values& values,
                std::index_sequence<Index...>) {
    AnswerOnce(callback, status, ToHidl<std::decay_t<Results>>(std::get<kFirst + Index>(values))...);
}

// Sets the results, which follow the first `kFirst` of `values`.
template <size_t kFirst, typename Values, typename Initial, size_t... Index>
void SetResults(Values& values, const Initial& initial, std::index_sequence<Index...>) {
    ((std::get<kFirst + Index>(values) = std::get<Index>(initial)), ...);
}

}  // namespace details

// For methods with results: the status, then the results, which have the values of `initial` unless the adaptor sets
// them.
template <typename... Results, typename... Initial, typename Adaptor, typename... Parameters, typename... Arguments>
::android::hardware::Return<void> AnswerFrom(const std::tuple<Initial...>& initial,
                                             const std::function<void(int32_t, Results...)>& callback,
                                             int (Adaptor::*operation)(Parameters...), const Arguments&... arguments) {
    static_assert(sizeof...(Parameters) == sizeof...(Arguments) + sizeof...(Results),
                  "wrong number of arguments or results for the operation");
    std::tuple<std::decay_t<Parameters>...> values{};
    details::SetArguments(values, std::index_sequence_for<Arguments...>(), arguments...);
    details::SetResults<sizeof...(Arguments)>(values, initial, std::index_sequence_for<Initial...>());
    const int status = details::CallAdaptor(operation, values);
    details::AnswerWith<sizeof...(Arguments)>(callback, status, values, std::index_sequence_for<Results...>());
    return ::android::hardware::Void();
}

// As above, with results that are zero unless the adaptor sets them.
template <typename... Results, typename Adaptor, typename... Parameters, typename... Arguments>
::android::hardware::Return<void> Answer(const std::function<void(int32_t, Results...)>& callback,
                                         int (Adaptor::*operation)(Parameters...), const Arguments&... arguments) {
    return AnswerFrom(std::tuple<>(), callback, operation, arguments...);
}

// For methods with work of their own: `operation` is called with the adaptor and the results, which are zero at first,
// and returns the status.
template <typename Adaptor, typename... Results, typename Operation>
::android::hardware::Return<void> AnswerBy(const std::function<void(int32_t, Results...)>& callback,
                                           const Operation& operation) {
    std::tuple<std::decay_t<Results>...> results{};
    Adaptor* adaptor = Adaptor::GetInstance();
    const int status =
        adaptor == nullptr ? -1 : std::apply([&](auto&... result) { return operation(*adaptor, result...); }, results);
    std::apply([&](const auto&... result) { details::AnswerOnce(callback, status, result...); }, results);
    return ::android::hardware::Void();
}

// For methods whose only result is the status.
template <typename Adaptor, typename... Parameters, typename... Arguments>
::android::hardware::Return<int32_t> Status(int (Adaptor::*operation)(Parameters...), const Arguments&... arguments) {
    static_assert(sizeof...(Parameters) == sizeof...(Arguments), "wrong number of arguments for the operation");
    std::tuple<std::decay_t<Parameters>...> values{};
    details::SetArguments(values, std::index_sequence_for<Arguments...>(), arguments...);
    return details::CallAdaptor(operation, values);
}

}  // namespace vantorel::hardware::hbbtv::implementation
