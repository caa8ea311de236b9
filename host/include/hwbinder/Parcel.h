// The arguments or the results of one call, written by one side and read by the other in the same order. Scalars are in
// a stream. The memory of structs, vectors and strings is in an arena; the stream and a table of buffers describe it.
// Objects are in a table of nodes. All reads are checked against these.
#pragma once

#include <cutils/native_handle.h>
#include <hwbinder/Descriptors.h>
#include <hwbinder/IBinder.h>
#include <utils/Errors.h>
#include <utils/RefBase.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct iovec;

namespace android::hardware {

namespace host {

// The head of a parcel on the wire, followed by: stream (padded to 8 bytes), node table, buffer table, arena.
struct WireHead {
    uint32_t streamSize;
    uint32_t nodeCount;
    uint32_t bufferCount;
    uint32_t arenaSize;
};

struct WireNode {
    enum Kind : uint32_t {
        kNull = 0,
        kSenders = 1,    // an object of the sender, with the sender's number
        kReceivers = 2,  // an object of the receiver, with the receiver's number
    };
    uint32_t kind;
    uint32_t zero;
    uint64_t number;
};

struct WireBuffer {
    static constexpr uint32_t kNoParent = UINT32_MAX;
    uint32_t parent;        // index of the buffer that points to this one
    uint32_t parentOffset;  // of the pointer in the parent
    uint32_t offset;        // in the arena, a multiple of 8
    uint32_t length;
};

// The source of a received parcel, which is notified if the parcel is invalid.
class ParcelSource {
  public:
    virtual ~ParcelSource() = default;
    virtual void ParcelIsDamaged() = 0;
};

}  // namespace host

class Parcel {
  public:
    Parcel() = default;
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;
    Parcel(Parcel&&) noexcept = default;
    Parcel& operator=(Parcel&&) noexcept = default;

    // The limit of a body. A larger one is refused with FAILED_TRANSACTION, as on the device.
    static constexpr size_t kMaxSize = 1024 * 1024 - 8 * 1024;

    status_t writeInterfaceToken(const char* interface);
    // Returns whether the parcel was written for this interface.
    bool enforceInterface(const char* interface) const;

    status_t writeBool(bool value);
    status_t writeInt8(int8_t value);
    status_t writeUint8(uint8_t value);
    status_t writeInt16(int16_t value);
    status_t writeUint16(uint16_t value);
    status_t writeInt32(int32_t value);
    status_t writeUint32(uint32_t value);
    status_t writeInt64(int64_t value);
    status_t writeUint64(uint64_t value);
    status_t writeFloat(float value);
    status_t writeDouble(double value);
    status_t writeText(const char* text, size_t length);

    status_t readBool(bool* value) const;
    status_t readInt8(int8_t* value) const;
    status_t readUint8(uint8_t* value) const;
    status_t readInt16(int16_t* value) const;
    status_t readUint16(uint16_t* value) const;
    status_t readInt32(int32_t* value) const;
    status_t readUint32(uint32_t* value) const;
    status_t readInt64(int64_t* value) const;
    status_t readUint64(uint64_t* value) const;
    status_t readFloat(float* value) const;
    status_t readDouble(double* value) const;
    // The string is not terminated. It is valid as long as the parcel.
    status_t readText(const char** text, size_t* length) const;

    // Copies the memory immediately. The handle identifies the buffer as the parent of embedded ones.
    status_t writeBuffer(const void* buffer, size_t length, size_t* handle);
    status_t writeEmbeddedBuffer(const void* buffer, size_t length, size_t* handle, size_t parentHandle,
                                 size_t parentOffset);

    // Returns memory of the parcel, which is valid as long as the parcel. Reading an embedded buffer sets the pointer
    // in its parent.
    status_t readBuffer(size_t length, size_t* handle, const void** buffer) const;
    status_t readEmbeddedBuffer(size_t length, size_t* handle, size_t parentHandle, size_t parentOffset,
                                const void** buffer) const;

    status_t writeStrongBinder(const sp<IBinder>& binder);
    status_t readNullableStrongBinder(sp<IBinder>* binder) const;

    // Copies the descriptors immediately. A parcel carries at most Descriptors::kMost; with more, writing fails with
    // INVALID_OPERATION.
    status_t writeNativeHandleNoDup(const native_handle_t* handle);
    // Returns a handle of the parcel, which is valid as long as the parcel.
    status_t readNullableNativeHandleNoDup(const native_handle_t** handle) const;

    // ---- For the transport ----

    // Returns the first error of writing, in case the writer did not check; FAILED_TRANSACTION if the parcel is too
    // large.
    status_t writeError() const { return mError; }

    const std::vector<sp<IBinder>>& nodes() const { return mNodes; }
    void setNodes(std::vector<sp<IBinder>>&& nodes) { mNodes = std::move(nodes); }

    const host::Descriptors& descriptors() const { return mDescriptors; }
    void setDescriptors(host::Descriptors&& descriptors) { mDescriptors = std::move(descriptors); }

    size_t wireSize() const;
    static constexpr int kMaxPieces = 6;
    // Sets `pieces` to the parts of the body in the order of the wire. They are not copied: they are valid as long as
    // the parcel, `head` and `wireNodes` (one per node). Returns their number.
    int wirePieces(host::WireHead* head, const host::WireNode* wireNodes, iovec* pieces) const;

    // Takes ownership of a received body. Returns whether its structure is valid. The arena is used in place.
    bool adopt(std::unique_ptr<uint64_t[]> body, size_t size);
    const host::WireNode* wireNodes(size_t* count) const;
    void setSource(const std::shared_ptr<host::ParcelSource>& source) { mSource = source; }

    // Reports that the parcel is well-formed but does not match the reader's interface: its source can no longer be
    // trusted.
    status_t damaged() const;

  private:
    status_t append(const void* data, size_t length);
    status_t addBuffer(const void* data, size_t length, size_t* handle, uint32_t parent, uint32_t parentOffset);
    template <typename T>
    status_t appendScalar(T value);
    template <typename T>
    status_t readScalar(T* value) const;
    status_t readReference(uint32_t marker, uint32_t* next, uint32_t count) const;
    status_t takeBuffer(size_t length, size_t* handle, uint32_t parent, uint32_t parentOffset, uint8_t** buffer) const;
    bool checkBuffers() const;

    // Writing.
    status_t mError = OK;
    std::vector<uint8_t> mStream;
    std::vector<host::WireBuffer> mBuffers;
    std::vector<uint8_t> mArena;

    // Writing and reading: as written, or as received and resolved.
    std::vector<sp<IBinder>> mNodes;
    host::Descriptors mDescriptors;

    // Reading: the received body, its tables, and the current position.
    std::unique_ptr<uint64_t[]> mBody;
    host::WireHead mHead = {};
    const uint8_t* mReadStream = nullptr;
    const host::WireNode* mReadNodes = nullptr;
    const host::WireBuffer* mReadBuffers = nullptr;
    uint8_t* mReadArena = nullptr;
    mutable size_t mReadPosition = 0;
    mutable uint32_t mNextBuffer = 0;
    mutable uint32_t mNextNode = 0;
    mutable size_t mNextDescriptor = 0;
    mutable std::vector<std::unique_ptr<native_handle_t, void (*)(native_handle_t*)>> mHandles;  // without descriptors
    std::shared_ptr<host::ParcelSource> mSource;
};

}  // namespace android::hardware
