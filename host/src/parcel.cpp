// Writes and reads parcels. Checks input from other processes: every length, offset and index, and that the reader
// reads exactly what the writer wrote.
#include <hwbinder/Parcel.h>
#include <sys/uio.h>

#include <cstring>

#include "log/host_log.h"

namespace android::hardware {

using host::WireBuffer;
using host::WireHead;
using host::WireNode;

namespace {

// Markers before the index of a buffer or node in the stream, so that a reader that is out of step notices.
constexpr uint32_t kBufferMarker = 0x66627566;
constexpr uint32_t kNodeMarker = 0x65646f6e;

constexpr size_t kMostIntsOfHandle = 1024;

constexpr size_t Align4(size_t n) {
    return (n + 3) & ~size_t{3};
}
constexpr size_t Align8(size_t n) {
    return (n + 7) & ~size_t{7};
}

const uint8_t kZeros[8] = {};

}  // namespace

// ---- Writing ----

status_t Parcel::append(const void* data, size_t length) {
    if (mError != OK) return mError;
    const size_t padded = Align4(length);
    if (length > kMaxSize || mStream.size() + padded > kMaxSize) return mError = FAILED_TRANSACTION;
    const size_t start = mStream.size();
    if (start == 0) mStream.reserve(128);
    mStream.resize(start + padded);
    if (length > 0) memcpy(&mStream[start], data, length);
    return OK;
}

template <typename T>
status_t Parcel::appendScalar(T value) {
    static_assert(sizeof(T) % 4 == 0, "a multiple of the stream's unit");
    return append(&value, sizeof(value));
}

status_t Parcel::writeBool(bool value) {
    return appendScalar<uint32_t>(value ? 1 : 0);
}
status_t Parcel::writeInt8(int8_t value) {
    return appendScalar<int32_t>(value);
}
status_t Parcel::writeUint8(uint8_t value) {
    return appendScalar<uint32_t>(value);
}
status_t Parcel::writeInt16(int16_t value) {
    return appendScalar<int32_t>(value);
}
status_t Parcel::writeUint16(uint16_t value) {
    return appendScalar<uint32_t>(value);
}
status_t Parcel::writeInt32(int32_t value) {
    return appendScalar(value);
}
status_t Parcel::writeUint32(uint32_t value) {
    return appendScalar(value);
}
status_t Parcel::writeInt64(int64_t value) {
    return appendScalar(value);
}
status_t Parcel::writeUint64(uint64_t value) {
    return appendScalar(value);
}
status_t Parcel::writeFloat(float value) {
    return appendScalar(value);
}
status_t Parcel::writeDouble(double value) {
    return appendScalar(value);
}

status_t Parcel::writeText(const char* text, size_t length) {
    if (length > kMaxSize) return mError = FAILED_TRANSACTION;
    const status_t status = writeUint32(static_cast<uint32_t>(length));
    return status == OK ? append(text, length) : status;
}

status_t Parcel::writeInterfaceToken(const char* interface) {
    return writeText(interface, strlen(interface));
}

status_t Parcel::addBuffer(const void* data, size_t length, size_t* handle, uint32_t parent, uint32_t parentOffset) {
    *handle = SIZE_MAX;
    if (mError != OK) return mError;
    const size_t start = mArena.size();
    if (length > kMaxSize || start + Align8(length) > kMaxSize) return mError = FAILED_TRANSACTION;
    mArena.resize(start + Align8(length));
    if (length > 0) memcpy(&mArena[start], data, length);
    const uint32_t index = static_cast<uint32_t>(mBuffers.size());
    mBuffers.push_back({parent, parentOffset, static_cast<uint32_t>(start), static_cast<uint32_t>(length)});
    *handle = index;
    appendScalar(kBufferMarker);
    return appendScalar(index);
}

status_t Parcel::writeBuffer(const void* buffer, size_t length, size_t* handle) {
    return addBuffer(buffer, length, handle, WireBuffer::kNoParent, 0);
}

status_t Parcel::writeEmbeddedBuffer(const void* buffer, size_t length, size_t* handle, size_t parentHandle,
                                     size_t parentOffset) {
    if (mError != OK) return mError;
    const bool fits = parentHandle < mBuffers.size() && parentOffset % 8 == 0 && mBuffers[parentHandle].length >= 8 &&
                      parentOffset <= mBuffers[parentHandle].length - 8;
    if (!fits) return mError = BAD_VALUE;
    return addBuffer(buffer, length, handle, static_cast<uint32_t>(parentHandle), static_cast<uint32_t>(parentOffset));
}

status_t Parcel::writeStrongBinder(const sp<IBinder>& binder) {
    if (mError != OK) return mError;
    const uint32_t index = static_cast<uint32_t>(mNodes.size());
    mNodes.push_back(binder);
    appendScalar(kNodeMarker);
    return appendScalar(index);
}

status_t Parcel::writeNativeHandleNoDup(const native_handle_t* handle) {
    if (mError != OK || handle == nullptr) return writeInt32(0);
    const size_t fds = handle->numFds < 0 ? SIZE_MAX : static_cast<size_t>(handle->numFds);
    const size_t ints = handle->numInts < 0 ? SIZE_MAX : static_cast<size_t>(handle->numInts);
    if (fds > host::Descriptors::kMost - mDescriptors.Size() || ints > kMostIntsOfHandle) {
        ALOGE("a native handle has too many descriptors or numbers");
        return mError = INVALID_OPERATION;
    }
    for (size_t i = 0; i < fds; ++i) {
        if (!mDescriptors.AddCopyOf(handle->data[i])) return mError = BAD_VALUE;
    }
    writeInt32(1);
    writeUint32(static_cast<uint32_t>(fds));
    writeUint32(static_cast<uint32_t>(ints));
    return append(handle->data + fds, ints * sizeof(int));
}

size_t Parcel::wireSize() const {
    return sizeof(WireHead) + Align8(mStream.size()) + mNodes.size() * sizeof(WireNode) +
           mBuffers.size() * sizeof(WireBuffer) + mArena.size();
}

int Parcel::wirePieces(WireHead* head, const WireNode* wireNodes, iovec* pieces) const {
    *head = {static_cast<uint32_t>(mStream.size()), static_cast<uint32_t>(mNodes.size()),
             static_cast<uint32_t>(mBuffers.size()), static_cast<uint32_t>(mArena.size())};
    int count = 0;
    const auto add = [&](const void* data, size_t size) {
        if (size > 0) pieces[count++] = {const_cast<void*>(data), size};
    };
    add(head, sizeof(*head));
    add(mStream.data(), mStream.size());
    add(kZeros, Align8(mStream.size()) - mStream.size());
    add(wireNodes, mNodes.size() * sizeof(WireNode));
    add(mBuffers.data(), mBuffers.size() * sizeof(WireBuffer));
    add(mArena.data(), mArena.size());
    return count;
}

// ---- Reading ----

bool Parcel::adopt(std::unique_ptr<uint64_t[]> body, size_t size) {
    *this = Parcel();
    if (size < sizeof(WireHead) || size % 8 != 0) return false;
    memcpy(&mHead, body.get(), sizeof(mHead));
    const uint64_t tables =
        uint64_t{mHead.nodeCount} * sizeof(WireNode) + uint64_t{mHead.bufferCount} * sizeof(WireBuffer);
    const uint64_t expected = sizeof(WireHead) + Align8(size_t{mHead.streamSize}) + tables + mHead.arenaSize;
    if (expected != size || mHead.streamSize % 4 != 0 || mHead.arenaSize % 8 != 0) return false;

    uint8_t* cursor = reinterpret_cast<uint8_t*>(body.get()) + sizeof(WireHead);
    mReadStream = cursor;
    cursor += Align8(mHead.streamSize);
    mReadNodes = reinterpret_cast<const WireNode*>(cursor);
    cursor += mHead.nodeCount * sizeof(WireNode);
    mReadBuffers = reinterpret_cast<const WireBuffer*>(cursor);
    cursor += mHead.bufferCount * sizeof(WireBuffer);
    mReadArena = cursor;
    mBody = std::move(body);
    return checkBuffers();
}

// The buffers must be adjacent without overlap, and a parent with room for the pointer must precede its child. Without
// overlap, setting a pointer later cannot change anything that was checked.
bool Parcel::checkBuffers() const {
    uint64_t end = 0;
    for (uint32_t i = 0; i < mHead.bufferCount; ++i) {
        const WireBuffer& buffer = mReadBuffers[i];
        if (buffer.offset != end) return false;
        end += Align8(size_t{buffer.length});
        if (end > mHead.arenaSize) return false;
        if (buffer.parent == WireBuffer::kNoParent) continue;
        if (buffer.parent >= i || buffer.parentOffset % 8 != 0) return false;
        if (uint64_t{buffer.parentOffset} + 8 > mReadBuffers[buffer.parent].length) return false;
    }
    return end == mHead.arenaSize;
}

const WireNode* Parcel::wireNodes(size_t* count) const {
    *count = mHead.nodeCount;
    return mReadNodes;
}

status_t Parcel::damaged() const {
    if (mSource != nullptr) mSource->ParcelIsDamaged();
    return BAD_VALUE;
}

template <typename T>
status_t Parcel::readScalar(T* value) const {
    if (mHead.streamSize - mReadPosition < sizeof(T)) return NOT_ENOUGH_DATA;
    memcpy(value, mReadStream + mReadPosition, sizeof(T));
    mReadPosition += sizeof(T);
    return OK;
}

namespace {

// Small integers take four bytes each and are truncated when read.
template <typename Narrow, typename Wide>
status_t Narrowed(status_t status, Wide wide, Narrow* value) {
    if (status == OK) *value = static_cast<Narrow>(wide);
    return status;
}

}  // namespace

status_t Parcel::readBool(bool* value) const {
    uint32_t wide = 0;
    const status_t status = readScalar(&wide);
    if (status == OK) *value = wide != 0;
    return status;
}

status_t Parcel::readInt8(int8_t* value) const {
    int32_t wide = 0;
    return Narrowed(readScalar(&wide), wide, value);
}

status_t Parcel::readUint8(uint8_t* value) const {
    uint32_t wide = 0;
    return Narrowed(readScalar(&wide), wide, value);
}

status_t Parcel::readInt16(int16_t* value) const {
    int32_t wide = 0;
    return Narrowed(readScalar(&wide), wide, value);
}

status_t Parcel::readUint16(uint16_t* value) const {
    uint32_t wide = 0;
    return Narrowed(readScalar(&wide), wide, value);
}

status_t Parcel::readInt32(int32_t* value) const {
    return readScalar(value);
}
status_t Parcel::readUint32(uint32_t* value) const {
    return readScalar(value);
}
status_t Parcel::readInt64(int64_t* value) const {
    return readScalar(value);
}
status_t Parcel::readUint64(uint64_t* value) const {
    return readScalar(value);
}
status_t Parcel::readFloat(float* value) const {
    return readScalar(value);
}
status_t Parcel::readDouble(double* value) const {
    return readScalar(value);
}

status_t Parcel::readText(const char** text, size_t* length) const {
    uint32_t size = 0;
    const status_t status = readScalar(&size);
    if (status != OK) return status;
    if (Align4(size_t{size}) > mHead.streamSize - mReadPosition) return NOT_ENOUGH_DATA;
    *text = reinterpret_cast<const char*>(mReadStream + mReadPosition);
    *length = size;
    mReadPosition += Align4(size);
    return OK;
}

bool Parcel::enforceInterface(const char* interface) const {
    const char* text = nullptr;
    size_t length = 0;
    if (readText(&text, &length) != OK) return false;
    if (length == strlen(interface) && memcmp(text, interface, length) == 0) return true;
    ALOGW("a call for interface %.*s reached an object of interface %s", static_cast<int>(length), text, interface);
    return false;
}

// Buffers and nodes are read in the order in which they were written.
status_t Parcel::readReference(uint32_t marker, uint32_t* next, uint32_t count) const {
    uint32_t found[2] = {};
    const status_t status = readScalar(&found);
    if (status != OK) return status;
    if (found[0] != marker || found[1] != *next || *next >= count) return damaged();
    ++*next;
    return OK;
}

status_t Parcel::takeBuffer(size_t length, size_t* handle, uint32_t parent, uint32_t parentOffset,
                            uint8_t** buffer) const {
    const status_t status = readReference(kBufferMarker, &mNextBuffer, mHead.bufferCount);
    if (status != OK) return status;
    const uint32_t index = mNextBuffer - 1;
    const WireBuffer& entry = mReadBuffers[index];
    if (entry.length != length || entry.parent != parent || entry.parentOffset != parentOffset) return damaged();
    *handle = index;
    *buffer = mReadArena + entry.offset;
    return OK;
}

status_t Parcel::readBuffer(size_t length, size_t* handle, const void** buffer) const {
    uint8_t* memory = nullptr;
    const status_t status = takeBuffer(length, handle, WireBuffer::kNoParent, 0, &memory);
    if (status == OK) *buffer = memory;
    return status;
}

status_t Parcel::readEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle, size_t parentOffset,
                                    const void** buffer) const {
    if (parentHandle >= mNextBuffer || parentOffset > UINT32_MAX) return damaged();
    uint8_t* memory = nullptr;
    const status_t status =
        takeBuffer(length, handle, static_cast<uint32_t>(parentHandle), static_cast<uint32_t>(parentOffset), &memory);
    if (status != OK) return status;
    if (length == 0) memory = nullptr;
    const uint64_t address = reinterpret_cast<uintptr_t>(memory);
    memcpy(mReadArena + mReadBuffers[parentHandle].offset + parentOffset, &address, sizeof(address));
    *buffer = memory;
    return OK;
}

status_t Parcel::readNullableStrongBinder(sp<IBinder>* binder) const {
    const status_t status = readReference(kNodeMarker, &mNextNode, static_cast<uint32_t>(mNodes.size()));
    if (status == OK) *binder = mNodes[mNextNode - 1];
    return status;
}

status_t Parcel::readNullableNativeHandleNoDup(const native_handle_t** handle) const {
    int32_t present = 0;
    const status_t status = readScalar(&present);
    *handle = nullptr;
    if (status != OK || present == 0) return status;
    uint32_t fds = 0;
    uint32_t ints = 0;
    if (readScalar(&fds) != OK || readScalar(&ints) != OK) return damaged();
    if (fds > mDescriptors.Size() - mNextDescriptor || ints > kMostIntsOfHandle ||
        ints * sizeof(int) > mHead.streamSize - mReadPosition) {
        return damaged();
    }
    native_handle_t* const read = native_handle_create(static_cast<int>(fds), static_cast<int>(ints));
    if (read == nullptr) return NO_MEMORY;
    mHandles.emplace_back(read, [](native_handle_t* owned) { native_handle_delete(owned); });
    for (uint32_t i = 0; i < fds; ++i) read->data[i] = mDescriptors[mNextDescriptor++];
    memcpy(read->data + fds, mReadStream + mReadPosition, ints * sizeof(int));
    mReadPosition += ints * sizeof(int);
    *handle = read;
    return OK;
}

}  // namespace android::hardware
