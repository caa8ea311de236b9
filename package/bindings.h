// Calls of the package's methods with JSON values. Generated files instantiate these templates, one row per method.
// Arguments and results are arrays in the order of the .hal file.
//
// Callers check values against the package's description first.
#pragma once

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/HidlSupport.h>
#include <hidl/Status.h>
#include <json/value.h>
#include <struct_conversions.h>

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace hbbtv {

using android::hardware::hidl_string;
using android::hardware::hidl_vec;
using android::hardware::Return;

// Receives the calls of callback objects. Must exist until the process ends, since callbacks may arrive until then.
class EventSink {
  public:
    virtual ~EventSink() = default;

    // Called on any thread. Returns the results of the method as an array; ignored if it has none.
    virtual Json::Value Take(const char* interface, const char* method, Json::Value arguments) = 0;

    // Returned by Take() instead, for a client that calls no result callback, or whose process has just ended.
    static Json::Value NoAnswer() { return false; }
    static Json::Value Died() { return Json::Value(); }
};

// For calls without callback objects.
class NoEvents : public EventSink {
  public:
    Json::Value Take(const char*, const char*, Json::Value) override { return Json::Value(Json::arrayValue); }
};

struct CallOutcome {
    bool answered = false;
    bool peerLost = false;  // when not answered
    std::string error;      // when not answered
    int answers = 0;        // how often results came; 1 unless the service is wrong
    Json::Value results{Json::arrayValue};
};

using Invoker = CallOutcome (*)(android::hidl::base::V1_0::IBase& service, const Json::Value& arguments,
                                EventSink& sink);

struct MethodBinding {
    const char* name;
    Invoker invoke;
};

struct InterfaceBinding {
    const char* descriptor;
    android::sp<android::hidl::base::V1_0::IBase> (*find)();  // returns null if it is not registered
    std::vector<MethodBinding> methods;
};

// Returns the interfaces that a service implements, by name.
const std::map<std::string, const InterfaceBinding*>& AllBindings();

// The class of a callback interface that passes every call to a sink; defined in I...Listener.h.
template <typename I>
struct ListenerClass;

template <typename I>
android::sp<I> MakeListener(EventSink& sink);

template <typename T>
struct IsVector : std::false_type {};
template <typename T>
struct IsVector<hidl_vec<T>> : std::true_type {
    using Element = T;
};

template <typename T>
struct IsStrongPointer : std::false_type {};
template <typename T>
struct IsStrongPointer<android::sp<T>> : std::true_type {
    using Object = T;
};

template <typename T>
T FromJson(const Json::Value& json) {
    if constexpr (std::is_same_v<T, bool>) {
        return json.asBool();
    } else if constexpr (std::is_enum_v<T>) {
        return static_cast<T>(FromJson<std::underlying_type_t<T>>(json));
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(json.asDouble());
    } else if constexpr (std::is_unsigned_v<T>) {
        return static_cast<T>(json.asUInt64());
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(json.asInt64());
    } else if constexpr (std::is_same_v<T, hidl_string>) {
        return json.asString();
    } else {
        static_assert(IsVector<T>::value, "structs have their own specialization");
        T values;
        values.resize(json.size());
        for (Json::ArrayIndex i = 0; i < json.size(); ++i) {
            values[i] = FromJson<typename IsVector<T>::Element>(json[i]);
        }
        return values;
    }
}

template <typename T>
std::enable_if_t<std::is_arithmetic_v<T>, Json::Value> ToJson(T value) {
    if constexpr (std::is_same_v<T, bool>) return value;
    if constexpr (std::is_floating_point_v<T>) return static_cast<double>(value);
    if constexpr (std::is_unsigned_v<T>) return static_cast<Json::UInt64>(value);
    return static_cast<Json::Int64>(value);
}

template <typename T>
std::enable_if_t<std::is_enum_v<T>, Json::Value> ToJson(T value) {
    return ToJson(static_cast<std::underlying_type_t<T>>(value));
}

inline Json::Value ToJson(const hidl_string& value) {
    return Json::Value(value.c_str(), value.c_str() + value.size());
}

template <typename T>
Json::Value ToJson(const hidl_vec<T>& values) {
    Json::Value json(Json::arrayValue);
    for (const T& value : values) json.append(ToJson(value));
    return json;
}

template <typename... T>
Json::Value Values(const T&... values) {
    Json::Value json(Json::arrayValue);
    (json.append(ToJson(values)), ...);
    return json;
}

template <typename... R, size_t... N>
Return<void> AnswerTo(const std::function<void(R...)>& callback, const Json::Value& results,
                      std::index_sequence<N...>) {
    callback(FromJson<std::decay_t<R>>(results[static_cast<Json::ArrayIndex>(N)])...);
    return {};
}

// Calls the result callback of a method with what a sink returned.
template <typename... R>
Return<void> AnswerTo(const std::function<void(R...)>& callback, const Json::Value& results) {
    if (results == EventSink::Died()) return android::hardware::Status::fromStatusT(android::DEAD_OBJECT);
    if (results == EventSink::NoAnswer()) return {};
    return AnswerTo(callback, results, std::index_sequence_for<R...>{});
}

// The answer of a method without a result callback, from what a sink returned.
template <typename T>
Return<T> AnswerWith(const Json::Value& results) {
    if (results == EventSink::Died()) return android::hardware::Status::fromStatusT(android::DEAD_OBJECT);
    if constexpr (std::is_void_v<T>) {
        return {};
    } else {
        return FromJson<T>(results[0]);
    }
}

// Returns the listener of this process for an interface. There is only one, because methods that unregister a callback
// require the same object.
template <typename I>
const android::sp<I>& ListenerOf(EventSink& sink) {
    static const android::sp<I> listener = MakeListener<I>(sink);
    return listener;
}

// Returns an argument in the type that is stored during the call.
template <typename A>
std::decay_t<A> Argument(const Json::Value& json, EventSink& sink) {
    using T = std::decay_t<A>;
    if constexpr (IsStrongPointer<T>::value) {
        return json.isNull() ? nullptr : ListenerOf<typename IsStrongPointer<T>::Object>(sink);
    } else {
        return FromJson<T>(json);
    }
}

template <typename T>
CallOutcome Outcome(const Return<T>& returned) {
    CallOutcome outcome;
    outcome.answered = returned.isOk();
    outcome.peerLost = returned.isDeadObject();
    if (!outcome.answered) outcome.error = returned.description();
    return outcome;
}

// Calls a method whose result, if any, is its return value. A... are its arguments.
template <typename I, typename T, typename... A, typename... All, size_t... N>
CallOutcome CallWith(I& service, Return<T> (I::*method)(All...), const Json::Value& json, EventSink& sink,
                     std::tuple<A...>*, std::index_sequence<N...>) {
    std::tuple<std::decay_t<A>...> arguments{Argument<A>(json[static_cast<Json::ArrayIndex>(N)], sink)...};
    const Return<T> returned = (service.*method)(std::get<N>(arguments)...);
    CallOutcome outcome = Outcome(returned);
    if constexpr (!std::is_void_v<T>) {
        if (outcome.answered) outcome.results.append(ToJson(static_cast<T>(returned)));
        outcome.answers = 1;
    }
    return outcome;
}

template <typename I, typename... R, typename... A, typename... All, size_t... N>
CallOutcome CallWithCallback(I& service, Return<void> (I::*method)(All...), const Json::Value& json, EventSink& sink,
                             std::function<void(R...)>*, std::tuple<A...>*, std::index_sequence<N...>) {
    std::tuple<std::decay_t<A>...> arguments{Argument<A>(json[static_cast<Json::ArrayIndex>(N)], sink)...};
    Json::Value results(Json::arrayValue);
    int answers = 0;
    const Return<void> returned = (service.*method)(std::get<N>(arguments)..., [&](const R&... values) {
        results = Values(values...);
        ++answers;
    });
    CallOutcome outcome = Outcome(returned);
    outcome.answers = answers;
    if (outcome.answered) outcome.results = results;
    return outcome;
}

template <typename T>
struct IsFunction : std::false_type {};
template <typename... R>
struct IsFunction<std::function<void(R...)>> : std::true_type {};

template <typename Tuple, typename Numbers>
struct FirstOf;
template <typename Tuple, size_t... N>
struct FirstOf<Tuple, std::index_sequence<N...>> {
    using Type = std::tuple<std::tuple_element_t<N, Tuple>...>;
};

// The last type, or void.
template <typename... A>
struct LastOf {
    using Type = void;
};
template <typename First, typename... A>
struct LastOf<First, A...> {
    using Type = std::decay_t<std::tuple_element_t<sizeof...(A), std::tuple<First, A...>>>;
};

template <typename I, typename T, typename... A>
CallOutcome InvokeMethod(I& service, Return<T> (I::*method)(A...), const Json::Value& json, EventSink& sink) {
    using All = std::tuple<A...>;
    using Last = typename LastOf<A...>::Type;
    if constexpr (IsFunction<Last>::value) {
        using Numbers = std::make_index_sequence<sizeof...(A) - 1>;
        using Arguments = typename FirstOf<All, Numbers>::Type;
        return CallWithCallback(service, method, json, sink, static_cast<Last*>(nullptr),
                                static_cast<Arguments*>(nullptr), Numbers{});
    } else {
        return CallWith(service, method, json, sink, static_cast<All*>(nullptr), std::index_sequence_for<A...>{});
    }
}

template <typename M>
struct ClassOf;
template <typename I, typename T, typename... A>
struct ClassOf<Return<T> (I::*)(A...)> {
    using Type = I;
};

template <auto Method>
CallOutcome Invoke(android::hidl::base::V1_0::IBase& service, const Json::Value& arguments, EventSink& sink) {
    using I = typename ClassOf<decltype(Method)>::Type;
    return InvokeMethod(static_cast<I&>(service), Method, arguments, sink);
}

template <typename I>
android::sp<android::hidl::base::V1_0::IBase> Find() {
    return I::tryGetService();
}

}  // namespace hbbtv
