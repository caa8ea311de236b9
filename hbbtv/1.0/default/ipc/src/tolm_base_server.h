// The events of an adaptor as JSON documents: what the platform sends to its endpoint and port is parsed and handed on.
#pragma once

#include <json/json.h>

#include <vector>

#include "ipc/tolm_ipc_server.h"
#include "ipc/tolm_ipc_types.h"

class TolmBaseServer : public tolm::TolmIpcServerDelegate {
  public:
    // Does not listen yet.
    TolmBaseServer(TolmIpcKeyId key, int port);

    // A class that overrides ReceiveIpc() has to call Stop() in its own destructor: here it is too late for messages
    // that are being handled.
    ~TolmBaseServer() override;

    // Begins to receive; true.
    bool Start();

    // Ends receiving: waits for a message that is being handled; after that ReceiveIpc() is called no more. Not from
    // inside ReceiveIpc().
    void Stop();

    void OnRecv(const std::vector<unsigned char>& msg, int port) override;
    void OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) override;

    // A one-way message, always an object. On a thread of the endpoint's server, one message at a time.
    virtual void ReceiveIpc(const Json::Value& /*msg*/) {}

    // A message whose sender waits for `out`, which is null before. Otherwise as above.
    virtual void ReceiveIpc(const Json::Value& /*msg*/, Json::Value& /*out*/) {}

  private:
    const TolmIpcKeyId mKey;
    const int mPort;
};
