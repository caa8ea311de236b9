// Nodes: what a call goes through. A BHwBinder is the stub of an object of this process (generated classes derive from
// it); the node of an object of another process is made by the transport. IInterface is the side of a proxy that knows
// its node.
#pragma once

#include <utils/Errors.h>
#include <utils/RefBase.h>

#include <cstdint>
#include <functional>
#include <memory>

// The name that the device's headers have for the ordinary policy.
#ifndef SCHED_NORMAL
#define SCHED_NORMAL 0
#endif

namespace android {
namespace hardware {

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

    // Carries out a call: returns with the reply, or when a one-way call is on its way.
    virtual status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                              TransactCallback callback = nullptr) = 0;

    // The recipient is held weakly and called from a thread of the pool, never from inside linkToDeath().
    virtual status_t linkToDeath(const sp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0) = 0;
    virtual status_t unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0,
                                   wp<DeathRecipient>* outRecipient = nullptr) = 0;

    virtual BHwBinder* localBinder() { return nullptr; }
    virtual host::BpHwBinder* remoteBinder() { return nullptr; }
};

class BHwBinder : public IBinder {
  public:
    BHwBinder();

    // An object of this process is called directly, never through its node: INVALID_OPERATION.
    status_t transact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                      TransactCallback callback = nullptr) override;

    // An object of this process dies with it: INVALID_OPERATION.
    status_t linkToDeath(const sp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0) override;
    status_t unlinkToDeath(const wp<DeathRecipient>& recipient, void* cookie = nullptr, uint32_t flags = 0,
                           wp<DeathRecipient>* outRecipient = nullptr) override;

    BHwBinder* localBinder() override { return this; }

    // Reads the arguments, calls the object, writes the reply. The reply leaves when `callback` is called with it, or
    // after the return when it was not.
    virtual status_t onTransact(uint32_t code, const Parcel& data, Parcel* reply, uint32_t flags = 0,
                                TransactCallback callback = nullptr) = 0;

    // The one-way calls that wait for this object. Belongs to the transport.
    host::OnewayQueue& onewayQueue() { return *mOnewayQueue; }

  protected:
    ~BHwBinder() override;

    void setRequestingSid(bool /* requestingSid */) {}

    int mSchedPolicy = SCHED_NORMAL;
    int mSchedPriority = 0;

  private:
    std::unique_ptr<host::OnewayQueue> mOnewayQueue;
};

// What a proxy is beside its interface.
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

}  // namespace hardware
}  // namespace android
