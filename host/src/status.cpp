#include <hidl/Status.h>

#include <atomic>

#include "log/host_log.h"

namespace android::hardware {

Status Status::fromExceptionCode(int32_t exceptionCode) {
    return fromExceptionCode(exceptionCode, "");
}

Status Status::fromExceptionCode(int32_t exceptionCode, const char* message) {
    Status status;
    status.setException(exceptionCode, message);
    return status;
}

Status Status::fromStatusT(status_t error) {
    Status status;
    status.setFromStatusT(error);
    return status;
}

void Status::setException(int32_t exceptionCode, const char* message) {
    *this = Status(exceptionCode, exceptionCode == EX_TRANSACTION_FAILED ? FAILED_TRANSACTION : OK, message);
}

void Status::setFromStatusT(status_t error) {
    *this = error == OK ? Status() : Status(EX_TRANSACTION_FAILED, error, "");
}

namespace {

std::string NameOf(status_t status) {
    switch (status) {
        case UNKNOWN_ERROR:
            return "UNKNOWN_ERROR";
        case NO_MEMORY:
            return "NO_MEMORY";
        case INVALID_OPERATION:
            return "INVALID_OPERATION";
        case BAD_VALUE:
            return "BAD_VALUE";
        case BAD_TYPE:
            return "BAD_TYPE";
        case NOT_ENOUGH_DATA:
            return "NOT_ENOUGH_DATA";
        case DEAD_OBJECT:
            return "DEAD_OBJECT";
        case FAILED_TRANSACTION:
            return "FAILED_TRANSACTION";
        case UNKNOWN_TRANSACTION:
            return "UNKNOWN_TRANSACTION";
        case UNEXPECTED_NULL:
            return "UNEXPECTED_NULL";
        default:
            return std::to_string(status);
    }
}

}  // namespace

std::string Status::description() const {
    if (isOk()) return "(No error)";
    std::string text = "Status(";
    switch (mException) {
        case EX_SECURITY:
            text += "EX_SECURITY";
            break;
        case EX_BAD_PARCELABLE:
            text += "EX_BAD_PARCELABLE";
            break;
        case EX_ILLEGAL_ARGUMENT:
            text += "EX_ILLEGAL_ARGUMENT";
            break;
        case EX_NULL_POINTER:
            text += "EX_NULL_POINTER";
            break;
        case EX_ILLEGAL_STATE:
            text += "EX_ILLEGAL_STATE";
            break;
        case EX_NETWORK_MAIN_THREAD:
            text += "EX_NETWORK_MAIN_THREAD";
            break;
        case EX_UNSUPPORTED_OPERATION:
            text += "EX_UNSUPPORTED_OPERATION";
            break;
        case EX_TRANSACTION_FAILED:
            text += "EX_TRANSACTION_FAILED";
            break;
        default:
            text += std::to_string(mException);
            break;
    }
    text += "): '";
    if (mException == EX_TRANSACTION_FAILED) text += NameOf(mErrorCode) + ": ";
    return text + mMessage + "'";
}

std::ostream& operator<<(std::ostream& os, const Status& status) {
    return os << status.description();
}

namespace {
std::atomic<HidlReturnRestriction> gReturnRestriction{HidlReturnRestriction::NONE};
}  // namespace

void setProcessHidlReturnRestriction(HidlReturnRestriction restriction) {
    gReturnRestriction = restriction;
}

namespace details {

return_status::return_status(return_status&& other) noexcept
    : mStatus(std::move(other.mStatus)), mCheckedStatus(other.mCheckedStatus) {
    other.mStatus = Status();
    other.mCheckedStatus = true;
}

return_status& return_status::operator=(return_status&& other) noexcept {
    if (this == &other) return *this;
    onIgnored();
    mStatus = std::move(other.mStatus);
    mCheckedStatus = other.mCheckedStatus;
    other.mStatus = Status();
    other.mCheckedStatus = true;
    return *this;
}

return_status::~return_status() {
    onIgnored();
}

bool return_status::isOk() const {
    mCheckedStatus = true;
    return mStatus.isOk();
}

bool return_status::isDeadObject() const {
    const bool dead = mStatus.transactionError() == DEAD_OBJECT;
    // Any other failure is still unchecked.
    mCheckedStatus = mCheckedStatus || dead;
    return dead;
}

void return_status::assertOk() const {
    mCheckedStatus = true;
    if (!mStatus.isOk()) LOG_ALWAYS_FATAL("Failed HIDL return status not checked: %s", mStatus.description().c_str());
}

std::string return_status::description() const {
    return mStatus.description();
}

void return_status::onValueRetrieval() const {
    if (!mStatus.isOk()) {
        LOG_ALWAYS_FATAL("Attempted to retrieve value from failed HIDL call: %s", mStatus.description().c_str());
    }
}

void return_status::onIgnored() const {
    if (mCheckedStatus) return;
    if (!mStatus.isOk()) LOG_ALWAYS_FATAL("Failed HIDL return status not checked: %s", mStatus.description().c_str());
    switch (gReturnRestriction.load()) {
        case HidlReturnRestriction::NONE:
            return;
        case HidlReturnRestriction::ERROR_IF_UNCHECKED:
            ALOGE("HIDL return not checked");
            return;
        case HidlReturnRestriction::FATAL_IF_UNCHECKED:
            LOG_ALWAYS_FATAL("HIDL return not checked");
    }
}

std::ostream& operator<<(std::ostream& os, const return_status& status) {
    return os << status.mStatus;
}

}  // namespace details
}  // namespace android::hardware
