// Nodes, which execute calls. A BHwBinder is the stub of an object of this process; generated classes derive from it.
// The transport creates the nodes of remote objects. IInterface is the part of a proxy that holds its node.
#pragma once

#include <utils/Errors.h>
#include <utils/RefBase.h>

#include <cstdint>
#include <functional>
#include <memory>

// The name of the default policy in the device's headers.
#ifndef SCHED_NORMAL
#define SCHED_NORMAL 0
#endif

namespace android::hardware {

class BHwBinder;
class Parcel;

namespace host {
class BpHwBinder;
class OnewayQueue;
}  // namespace host

class IBinder : public virtual RefBase {
  public:
    using TransactCallback = std::function<void(Parcel&)>;

    enum { FLAG_ONEWAY = 0x00000001 };

    class DeathRecipient : public virtual RefBase {
      public:
        virtual void binderDied(const wp<IBinder>& who) = 0;
    };

    // Executes a call. Returns when the reply has arrived, or when a one-way call has been sent.
    virtual status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                              TransactCallback callback = nullptr) = 0;

    // Holds the recipient weakly. It is called on a thread of the pool, never within linkToDeath().
    virtual status_t linkToDeath(const sp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0) = 0;
    virtual status_t unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0,
                                   wp<DeathRecipient>* outRecipient = nullptr) = 0;

    virtual BHwBinder* localBinder() { return nullptr; }
    virtual host::BpHwBinder* remoteBinder() { return nullptr; }
};

class BHwBinder : public IBinder {
  public:
    BHwBinder();

    // Returns INVALID_OPERATION: an object of this process is called directly, not through its node.
    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                      TransactCallback callback = nullptr) override;

    // Return INVALID_OPERATION: an object of this process dies with it.
    status_t linkToDeath(const sp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0,
                           wp<DeathRecipient>* outRecipient = nullptr) override;

    BHwBinder* localBinder() override { return this; }

    // Reads the arguments, calls the object and writes the reply. The reply is sent when `callback` is called with it,
    // or else after the return.
    virtual status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                                TransactCallback callback = nullptr) = 0;

    // Returns the queue of one-way calls of this object. For the transport.
    host::OnewayQueue& onewayQueue() { return *mOnewayQueue; }

  protected:
    ~BHwBinder() override;

    void setRequestingSid(bool /* requestingSid */) {}

    int mSchedPolicy = SCHED_NORMAL;
    int mSchedPriority = 0;

  private:
    std::unique_ptr<host::OnewayQueue> mOnewayQueue;
};

// The part of a proxy that is not its interface.
class IInterface : public virtual RefBase {
  public:
    static sp<IBinder> asBinder(IInterface* interface) { return interface == nullptr ? nullptr : interface->mRemote; }

  protected:
    explicit IInterface(const sp<IBinder>& remote) : mRemote(remote) {}

    IBinder* remote() const { return mRemote.get(); }

  private:
    const sp<IBinder> mRemote;
};

// Base of generated proxies.
template <typename INTERFACE>
class BpInterface : public INTERFACE, public IInterface {
  public:
    explicit BpInterface(const sp<IBinder>& remote) : IInterface(remote) {}
};

}  // namespace android::hardware
