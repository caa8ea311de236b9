// The events of an adaptor as JSON documents: parses the messages that the platform sends to its endpoint and port.
#pragma once

#include <json/json.h>

#include <vector>

#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"

class TolmBaseServer : public tolm::TolmIpcServerDelegate {
  public:
    // Does not listen yet.
    TolmBaseServer(TolmIpcKeyId key, int port);

    // A class that overrides ReceiveIpc() must call Stop() in its own destructor: here it is too late for messages that
    // are being handled.
    ~TolmBaseServer() override;

    // Starts receiving. Returns true.
    bool Start();

    // Stops receiving and waits for a message that is being handled; then ReceiveIpc() is not called any more. Must not
    // be called by ReceiveIpc().
    void Stop();

    void OnRecv(const std::vector<unsigned char>& msg, int port) override;
    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) override;

    // Handles a one-way message, which is an object. Called for one message at a time, on a thread of the endpoint's
    // server.
    virtual void ReceiveIpc(const Json::Value& /*msg*/) {}

    // As above, for a message whose sender waits for `out`, which is null at first.
    virtual void ReceiveIpc(const Json::Value& /*msg*/, Json::Value& /*out*/) {}

  private:
    const TolmIpcKeyId mKey;
    const int mPort;
};
