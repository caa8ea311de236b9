// Strings, handles and the other data types of hidl/HidlSupport.h.
#include <hidl/HidlSupport.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdlib>

#include "log/host_log.h"

namespace android::hardware {

namespace details {

void logAlwaysFatal(const char* message) {
    LOG_ALWAYS_FATAL("%s", message);
    std::abort();  // not reached: the compiler cannot see that the line above ends the process
}

HidlInstrumentor::HidlInstrumentor(const std::string& /* package */, const std::string& /* interface */) {}
HidlInstrumentor::~HidlInstrumentor() = default;
void HidlInstrumentor::configureInstrumentation(bool /* log */) {}

bool debuggable() {
    return false;
}
int32_t getPidIfSharable() {
    return getpid();
}

}  // namespace details

// ---- hidl_handle ----

hidl_handle::hidl_handle() : mHandle(nullptr), mOwnsHandle(false), mPadding{} {}
hidl_handle::hidl_handle(const native_handle_t* handle) : hidl_handle() {
    mHandle = handle;
}
hidl_handle::hidl_handle(const hidl_handle& other) : hidl_handle() {
    *this = other;
}
hidl_handle::hidl_handle(hidl_handle&& other) noexcept : hidl_handle() {
    *this = std::move(other);
}
hidl_handle::~hidl_handle() {
    clear();
}

hidl_handle& hidl_handle::operator=(const hidl_handle& other) {
    if (this == &other) return *this;
    clear();
    if (other.mHandle != nullptr) {
        mHandle = native_handle_clone(other.mHandle);
        if (mHandle == nullptr) details::logAlwaysFatal("cannot clone a native handle");
        mOwnsHandle = true;
    }
    return *this;
}

hidl_handle& hidl_handle::operator=(const native_handle_t* handle) {
    clear();
    mHandle = handle;
    return *this;
}

hidl_handle& hidl_handle::operator=(hidl_handle&& other) noexcept {
    if (this == &other) return *this;
    clear();
    mHandle = static_cast<const native_handle_t*>(other.mHandle);
    mOwnsHandle = other.mOwnsHandle;
    other.mHandle = nullptr;
    other.mOwnsHandle = false;
    return *this;
}

void hidl_handle::setTo(native_handle_t* handle, bool shouldOwn) {
    clear();
    mHandle = handle;
    mOwnsHandle = shouldOwn;
}

void hidl_handle::clear() {
    if (mOwnsHandle) {
        native_handle_t* handle = const_cast<native_handle_t*>(getNativeHandle());
        native_handle_close(handle);
        native_handle_delete(handle);
    }
    mHandle = nullptr;
    mOwnsHandle = false;
}

// ---- hidl_string ----

const size_t hidl_string::kOffsetOfBuffer = 0;

hidl_string::hidl_string() : mBuffer(""), mSize(0), mOwnsBuffer(false), mPadding{} {}
hidl_string::hidl_string(const char* text) : hidl_string() {
    *this = text;
}
hidl_string::hidl_string(const char* text, size_t length) : hidl_string() {
    copyFrom(text, length);
}
hidl_string::hidl_string(const std::string& text) : hidl_string() {
    copyFrom(text.data(), text.size());
}
hidl_string::hidl_string(const hidl_string& other) : hidl_string() {
    copyFrom(other.c_str(), other.size());
}
hidl_string::hidl_string(hidl_string&& other) noexcept : hidl_string() {
    moveFrom(other);
}
hidl_string::~hidl_string() {
    clear();
}

hidl_string& hidl_string::operator=(const hidl_string& other) {
    if (this != &other) copyFrom(other.c_str(), other.size());
    return *this;
}

hidl_string& hidl_string::operator=(const char* text) {
    copyFrom(text, text == nullptr ? 0 : strlen(text));
    return *this;
}

hidl_string& hidl_string::operator=(const std::string& text) {
    copyFrom(text.data(), text.size());
    return *this;
}

hidl_string& hidl_string::operator=(hidl_string&& other) noexcept {
    if (this != &other) {
        clear();
        moveFrom(other);
    }
    return *this;
}

hidl_string::operator std::string() const {
    return std::string(mBuffer, mSize);
}

void hidl_string::clear() {
    if (mOwnsBuffer) delete[] static_cast<const char*>(mBuffer);
    mBuffer = "";
    mSize = 0;
    mOwnsBuffer = false;
}

void hidl_string::setToExternal(const char* data, size_t size) {
    if (size > UINT32_MAX) details::logAlwaysFatal("hidl_string can't hold that much");
    clear();
    mBuffer = data;
    mSize = static_cast<uint32_t>(size);
}

// The source may be part of this very string, so it is copied before the old buffer goes.
void hidl_string::copyFrom(const char* data, size_t size) {
    if (size >= UINT32_MAX) details::logAlwaysFatal("hidl_string can't hold that much");
    if (size == 0) return clear();
    char* copy = new char[size + 1];
    memcpy(copy, data, size);
    copy[size] = '\0';
    clear();
    mBuffer = copy;
    mSize = static_cast<uint32_t>(size);
    mOwnsBuffer = true;
}

void hidl_string::moveFrom(hidl_string& other) {
    mBuffer = static_cast<const char*>(other.mBuffer);
    mSize = other.mSize;
    mOwnsBuffer = other.mOwnsBuffer;
    other.mOwnsBuffer = false;
    other.clear();
}

std::ostream& operator<<(std::ostream& os, const hidl_string& text) {
    return os << text.c_str();
}

// ---- toString ----

std::string toString(const void* pointer) {
    char text[2 + 16 + 1];
    snprintf(text, sizeof(text), "0x%" PRIxPTR, reinterpret_cast<uintptr_t>(pointer));
    return text;
}

std::string toString(const hidl_string& text) {
    return std::string("\"") + text.c_str() + "\"";
}
std::string toString(const hidl_handle& handle) {
    return toString(static_cast<const void*>(handle.getNativeHandle()));
}
std::string toString(const sp<hidl_death_recipient>& recipient) {
    return "death_recipient@" + toString(static_cast<const void*>(recipient.get()));
}

}  // namespace android::hardware
