// The data types of HIDL packages: strings, vectors, arrays and handles, whose raw memory is sent to other processes,
// and helpers of generated data types (toString, enum values, death recipients). Does not depend on the transport.
#pragma once

#include <cutils/native_handle.h>
#include <hidl/HidlInternal.h>
#include <utils/Errors.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace android {
namespace hidl::base::V1_0 {
struct IBase;
}  // namespace hidl::base::V1_0

namespace hardware {

// Receives the death of the process of a remote object. The runtime holds it weakly, so the caller that links it must
// keep it.
struct hidl_death_recipient : public virtual RefBase {
    // Called on a thread of the pool. `who` can be promoted as long as there is a strong reference to the linked proxy.
    virtual void serviceDied(uint64_t cookie, const wp<::android::hidl::base::V1_0::IBase>& who) = 0;
};

// A native handle. Owned only if it is a copy, for example after assignment from another hidl_handle.
struct hidl_handle {
    hidl_handle();
    hidl_handle(const native_handle_t* handle);
    hidl_handle(const hidl_handle& other);
    hidl_handle(hidl_handle&& other) noexcept;
    ~hidl_handle();

    hidl_handle& operator=(const hidl_handle& other);
    hidl_handle& operator=(const native_handle_t* handle);
    hidl_handle& operator=(hidl_handle&& other) noexcept;

    void setTo(native_handle_t* handle, bool shouldOwn = false);
    void clear();

    const native_handle_t* operator->() const { return mHandle; }
    operator const native_handle_t*() const { return mHandle; }
    const native_handle_t* getNativeHandle() const { return mHandle; }

  private:
    details::hidl_pointer<const native_handle_t> mHandle;
    bool mOwnsHandle;
    [[maybe_unused]] uint8_t mPadding[7];
};

// A NUL-terminated string. The size includes embedded NULs; comparisons and toString() stop at the first one.
struct hidl_string {
    hidl_string();
    hidl_string(const char* text);
    hidl_string(const char* text, size_t length);
    hidl_string(const std::string& text);
    hidl_string(const hidl_string& other);
    hidl_string(hidl_string&& other) noexcept;
    ~hidl_string();

    hidl_string& operator=(const hidl_string& other);
    hidl_string& operator=(const char* text);
    hidl_string& operator=(const std::string& text);
    hidl_string& operator=(hidl_string&& other) noexcept;

    operator std::string() const;

    const char* c_str() const { return mBuffer; }
    size_t size() const { return mSize; }
    bool empty() const { return mSize == 0; }
    void clear();

    // Refers to memory of the caller, which must be NUL-terminated at data[size] and outlive this string.
    void setToExternal(const char* data, size_t size);

    static const size_t kOffsetOfBuffer;

  private:
    void copyFrom(const char* data, size_t size);
    void moveFrom(hidl_string& other);

    details::hidl_pointer<const char> mBuffer;
    uint32_t mSize;
    bool mOwnsBuffer;
    [[maybe_unused]] uint8_t mPadding[3];  // always zero: sent as raw memory
};

#define HIDL_STRING_OPERATOR(op)                                          \
    inline bool operator op(const hidl_string& a, const hidl_string& b) { \
        return strcmp(a.c_str(), b.c_str()) op 0;                         \
    }                                                                     \
    inline bool operator op(const hidl_string& a, const char* b) {        \
        return strcmp(a.c_str(), b) op 0;                                 \
    }                                                                     \
    inline bool operator op(const char* a, const hidl_string& b) {        \
        return strcmp(a, b.c_str()) op 0;                                 \
    }

HIDL_STRING_OPERATOR(==)
HIDL_STRING_OPERATOR(!=)
HIDL_STRING_OPERATOR(<)
HIDL_STRING_OPERATOR(<=)
HIDL_STRING_OPERATOR(>)
HIDL_STRING_OPERATOR(>=)
#undef HIDL_STRING_OPERATOR

std::ostream& operator<<(std::ostream& os, const hidl_string& text);

// The host does not support shared memory: this is only the layout and the getters.
struct hidl_memory {
    hidl_memory() : mHandle(nullptr), mSize(0) {}
    hidl_memory(const hidl_string& name, const native_handle_t* handle, size_t size)
        : mHandle(handle), mSize(size), mName(name) {}

    const native_handle_t* handle() const { return mHandle; }
    const hidl_string& name() const { return mName; }
    uint64_t size() const { return mSize; }

  private:
    hidl_handle mHandle;
    uint64_t mSize;
    hidl_string mName;
};

// A vector of elements, which it owns or refers to.
template <typename T>
struct hidl_vec {
    using value_type = T;

    hidl_vec() : mSize(0), mOwnsBuffer(false), mPadding{} {}
    explicit hidl_vec(size_t size) : hidl_vec() { resize(size); }
    hidl_vec(const hidl_vec& other) : hidl_vec() { copyFrom(other.begin(), other.size()); }
    hidl_vec(hidl_vec&& other) noexcept : hidl_vec() { moveFrom(other); }
    hidl_vec(std::initializer_list<T> list) : hidl_vec() { copyFrom(list.begin(), list.size()); }
    hidl_vec(const std::vector<T>& other) : hidl_vec() { copyFrom(other.begin(), other.size()); }
    template <
        typename InputIterator,
        typename = typename std::enable_if<std::is_convertible<
            typename std::iterator_traits<InputIterator>::iterator_category, std::input_iterator_tag>::value>::type>
    hidl_vec(InputIterator first, InputIterator last) : hidl_vec() {
        copyFrom(first, static_cast<size_t>(std::distance(first, last)));
    }
    ~hidl_vec() { release(); }

    hidl_vec& operator=(const hidl_vec& other) {
        if (this != &other) *this = hidl_vec(other);
        return *this;
    }
    hidl_vec& operator=(hidl_vec&& other) noexcept {
        if (this != &other) {
            release();
            moveFrom(other);
        }
        return *this;
    }
    hidl_vec& operator=(const std::vector<T>& other) { return *this = hidl_vec(other); }
    hidl_vec& operator=(std::initializer_list<T> list) { return *this = hidl_vec(list); }

    operator std::vector<T>() const { return std::vector<T>(begin(), end()); }

    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    size_t size() const { return mSize; }

    T& operator[](size_t index) { return mBuffer[index]; }
    const T& operator[](size_t index) const { return mBuffer[index]; }

    T* begin() { return mBuffer; }
    T* end() { return mSize == 0 ? begin() : mBuffer + mSize; }
    const T* begin() const { return mBuffer; }
    const T* end() const { return mSize == 0 ? begin() : mBuffer + mSize; }
    const T* cbegin() const { return begin(); }
    const T* cend() const { return end(); }

    void resize(size_t size) {
        T* elements = allocate(size);
        const size_t kept = std::min<size_t>(size, mSize);
        if (mOwnsBuffer) {
            std::move(begin(), begin() + kept, elements);
        } else {
            std::copy(begin(), begin() + kept, elements);
        }
        release();
        own(elements, size);
    }

    // Refers to memory of the caller, or takes ownership of an array that the caller allocated with new[].
    void setToExternal(T* data, size_t size, bool shouldOwn = false) {
        checkSize(size);
        release();
        mBuffer = data;
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = shouldOwn;
    }

    // Releases the elements: the caller deletes them with delete[] if this vector owned them.
    T* releaseData() {
        T* elements = mBuffer;
        own(nullptr, 0);
        return elements;
    }

    static constexpr size_t kOffsetOfBuffer = 0;

  private:
    static void checkSize(size_t size) {
        if (size > std::numeric_limits<uint32_t>::max()) details::logAlwaysFatal("hidl_vec can't hold that much");
    }
    static T* allocate(size_t size) {
        checkSize(size);
        return size == 0 ? nullptr : new T[size]();
    }
    void own(T* elements, size_t size) {
        mBuffer = elements;
        mSize = static_cast<uint32_t>(size);
        mOwnsBuffer = elements != nullptr;
    }
    void release() {
        if (mOwnsBuffer) delete[] static_cast<T*>(mBuffer);
        own(nullptr, 0);
    }
    void moveFrom(hidl_vec& other) {
        mBuffer = static_cast<T*>(other.mBuffer);
        mSize = other.mSize;
        mOwnsBuffer = other.mOwnsBuffer;
        other.own(nullptr, 0);
    }
    template <typename Iterator>
    void copyFrom(Iterator first, size_t size) {
        T* elements = allocate(size);
        for (size_t i = 0; i < size; ++i, ++first) elements[i] = *first;
        own(elements, size);
    }

    details::hidl_pointer<T> mBuffer;
    uint32_t mSize;
    bool mOwnsBuffer;
    [[maybe_unused]] uint8_t mPadding[3];  // always zero: sent as raw memory
};

template <typename T>
bool operator==(const hidl_vec<T>& a, const hidl_vec<T>& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}
template <typename T>
bool operator!=(const hidl_vec<T>& a, const hidl_vec<T>& b) {
    return !(a == b);
}

// An array of fixed size. The constructor takes a reference to an array, so that array temporaries in generated code
// convert with every compiler.
template <typename T, size_t N>
struct hidl_array {
    hidl_array() = default;
    hidl_array(const T (&elements)[N]) { std::copy(elements, elements + N, mBuffer); }

    T* data() { return mBuffer; }
    const T* data() const { return mBuffer; }
    T& operator[](size_t index) { return mBuffer[index]; }
    const T& operator[](size_t index) const { return mBuffer[index]; }
    static constexpr size_t size() { return N; }

  private:
    T mBuffer[N] = {};
};

template <typename T, size_t N>
bool operator==(const hidl_array<T, N>& a, const hidl_array<T, N>& b) {
    return std::equal(a.data(), a.data() + N, b.data());
}
template <typename T, size_t N>
bool operator!=(const hidl_array<T, N>& a, const hidl_array<T, N>& b) {
    return !(a == b);
}

static_assert(std::is_standard_layout<hidl_string>::value && sizeof(hidl_string) == 16, "sent as raw memory");
static_assert(std::is_standard_layout<hidl_vec<char>>::value && sizeof(hidl_vec<char>) == 16, "sent as raw memory");
static_assert(sizeof(hidl_handle) == 16 && sizeof(hidl_memory) == 40, "as generated code asserts");

// Flags of an enum type, as its underlying integer.
template <typename T, typename = typename std::enable_if<std::is_enum<T>::value>::type>
using hidl_bitfield = typename std::underlying_type<T>::type;

namespace details {

// The values of an enum type; generated code specialises it for every enum of a package. In an unnamed namespace,
// because the specialisations are in headers without `inline`: otherwise, with clang, the linker would find them more
// than once.
inline namespace enum_values {
inline namespace {
template <typename T>
constexpr std::array<T, 0> hidl_enum_values = {};
}  // namespace
}  // namespace enum_values

template <typename T>
std::string toHexString(T value, bool prefix = true) {
    std::ostringstream os;
    if (prefix) os << std::showbase;
    os << std::hex << +value;
    return os.str();
}

}  // namespace details

// All values of an enum type: for (Colour c : hidl_enum_range<Colour>()).
template <typename T>
struct hidl_enum_range {
    constexpr auto begin() const { return details::hidl_enum_values<T>.begin(); }
    constexpr auto end() const { return details::hidl_enum_values<T>.end(); }
    constexpr auto cbegin() const { return begin(); }
    constexpr auto cend() const { return end(); }
};

template <typename T>
typename std::enable_if<std::is_arithmetic<T>::value, std::string>::type toString(T value) {
    return std::to_string(value);
}
std::string toString(const void* pointer);
std::string toString(const hidl_string& text);
std::string toString(const hidl_handle& handle);
std::string toString(const sp<hidl_death_recipient>& recipient);

namespace details {
template <typename Elements>
std::string elementsToString(const Elements& elements) {
    std::string text = "{";
    for (size_t i = 0; i < elements.size(); ++i) {
        if (i > 0) text += ", ";
        text += toString(elements[i]);
    }
    return text + "}";
}
}  // namespace details

template <typename T>
std::string toString(const hidl_vec<T>& elements) {
    return "[" + std::to_string(elements.size()) + "]" + details::elementsToString(elements);
}
template <typename T, size_t N>
std::string toString(const hidl_array<T, N>& elements) {
    return "[" + std::to_string(N) + "]" + details::elementsToString(elements);
}

namespace details {

// The base of generated stubs, proxies and wrappers. The host does not support instrumentation: it is never enabled.
struct HidlInstrumentor {
    enum InstrumentationEvent {
        SERVER_API_ENTRY = 0,
        SERVER_API_EXIT,
        CLIENT_API_ENTRY,
        CLIENT_API_EXIT,
        SYNC_CALLBACK_ENTRY,
        SYNC_CALLBACK_EXIT,
        ASYNC_CALLBACK_ENTRY,
        ASYNC_CALLBACK_EXIT,
        PASSTHROUGH_ENTRY,
        PASSTHROUGH_EXIT,
    };
    using InstrumentationCallback = std::function<void(InstrumentationEvent, const char*, const char*, const char*,
                                                       const char*, std::vector<void*>*)>;

    HidlInstrumentor(const std::string& package, const std::string& interface);
    virtual ~HidlInstrumentor();

    const std::vector<InstrumentationCallback>& getInstrumentationCallbacks() { return mInstrumentationCallbacks; }
    bool isInstrumentationEnabled() { return mEnableInstrumentation; }

  protected:
    void configureInstrumentation(bool log = true);

    bool mEnableInstrumentation = false;
    std::vector<InstrumentationCallback> mInstrumentationCallbacks;
};

// Returns whether addresses may be shown to other processes: false.
bool debuggable();

// Returns the process id for getDebugInfo().
int32_t getPidIfSharable();

}  // namespace details
}  // namespace hardware
}  // namespace android
