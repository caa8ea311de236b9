// The outcome of a call: a Status, and a Return<T> that holds a Status and the result. A failed Return that is not
// checked ends the process.
#pragma once

#include <hidl/HidlSupport.h>
#include <utils/Errors.h>

#include <cstdint>
#include <ostream>
#include <string>

namespace android::hardware {

class Status {
  public:
    enum Exception : int32_t {
        EX_NONE = 0,
        EX_SECURITY = -1,
        EX_BAD_PARCELABLE = -2,
        EX_ILLEGAL_ARGUMENT = -3,
        EX_NULL_POINTER = -4,
        EX_ILLEGAL_STATE = -5,
        EX_NETWORK_MAIN_THREAD = -6,
        EX_UNSUPPORTED_OPERATION = -7,
        EX_HAS_REPLY_HEADER = -128,
        EX_TRANSACTION_FAILED = -129,
    };

    Status() = default;

    static Status ok() { return Status(); }
    static Status fromExceptionCode(int32_t exceptionCode);
    static Status fromExceptionCode(int32_t exceptionCode, const char* message);
    static Status fromStatusT(status_t status);

    void setException(int32_t exceptionCode, const char* message);
    void setFromStatusT(status_t status);

    bool isOk() const { return mException == EX_NONE; }
    int32_t exceptionCode() const { return mException; }
    const char* exceptionMessage() const { return mMessage.c_str(); }
    status_t transactionError() const { return mException == EX_TRANSACTION_FAILED ? mErrorCode : OK; }

    std::string description() const;

  private:
    Status(int32_t exceptionCode, status_t errorCode, const char* message)
        : mException(exceptionCode), mErrorCode(errorCode), mMessage(message) {}

    int32_t mException = EX_NONE;
    status_t mErrorCode = OK;  // of EX_TRANSACTION_FAILED
    std::string mMessage;
};

std::ostream& operator<<(std::ostream& os, const Status& status);

template <typename T>
class Return;

// What happens if a successful Return is not checked. A failed one always ends the process.
enum class HidlReturnRestriction {
    NONE,
    ERROR_IF_UNCHECKED,
    FATAL_IF_UNCHECKED,
};
void setProcessHidlReturnRestriction(HidlReturnRestriction restriction);

namespace details {

class return_status {
  public:
    return_status() = default;
    return_status(const Status& status) : mStatus(status) {}
    return_status(const return_status&) = delete;
    return_status& operator=(const return_status&) = delete;
    return_status(return_status&& other) noexcept;
    return_status& operator=(return_status&& other) noexcept;
    ~return_status();

    // Counts as a check.
    bool isOk() const;
    // Counts as a check if it returns true.
    bool isDeadObject() const;
    bool isOkUnchecked() const { return mStatus.isOk(); }

    // Ends the process if the call failed.
    void assertOk() const;

    std::string description() const;

  protected:
    void onValueRetrieval() const;

  private:
    template <typename T, typename U>
    friend Return<U> StatusOf(const Return<T>& other);
    friend std::ostream& operator<<(std::ostream& os, const return_status& status);

    void onIgnored() const;

    Status mStatus;
    mutable bool mCheckedStatus = false;
};

std::ostream& operator<<(std::ostream& os, const return_status& status);

}  // namespace details

template <typename T>
class Return : public details::return_status {
  public:
    Return(T value) : mValue(value) {}
    Return(const Status& status) : return_status(status) {}
    Return(Return&&) noexcept = default;
    Return& operator=(Return&&) noexcept = default;

    // Ends the process if the call failed.
    operator T() const {
        onValueRetrieval();
        return mValue;
    }
    T withDefault(T value) const { return isOk() ? mValue : value; }

  private:
    T mValue{};
};

template <typename T>
class Return<sp<T>> : public details::return_status {
  public:
    Return(T* value) : mValue(value) {}
    template <typename U>
    Return(const sp<U>& value) : mValue(value) {}
    template <typename U>
    Return(U* value) : mValue(value) {}
    Return(const Status& status) : return_status(status) {}
    Return(Return&&) noexcept = default;
    Return& operator=(Return&&) noexcept = default;

    // Ends the process if the call failed.
    operator sp<T>() const {
        onValueRetrieval();
        return mValue;
    }
    sp<T> withDefault(const sp<T>& value) const { return isOk() ? mValue : value; }

  private:
    sp<T> mValue;
};

template <>
class Return<void> : public details::return_status {
  public:
    Return() = default;
    Return(const Status& status) : return_status(status) {}
    Return(Return&&) noexcept = default;
    Return& operator=(Return&&) noexcept = default;
};

inline Return<void> Void() {
    return Return<void>();
}

namespace details {

// Returns the same failure as a Return of another type.
template <typename T, typename U>
Return<U> StatusOf(const Return<T>& other) {
    other.mCheckedStatus = true;
    return Return<U>(other.mStatus);
}

}  // namespace details
}  // namespace android::hardware
