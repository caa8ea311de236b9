// The requests of an adaptor as JSON documents: each becomes one message on its endpoint, with or without a reply.
#pragma once

#include <json/json.h>

#include <memory>
#include <mutex>

#include "ipc/tolm_ipc_client.h"
#include "ipc/tolm_ipc_types.h"

class TolmBaseClient {
  public:
    // `port` is what the platform knows this client by. Connects with the first message.
    TolmBaseClient(TolmIpcKeyId key, int port);

    // One-way: 0 when the message was written, else -1. Any thread, also while another waits for a reply.
    int SendIpcWithNoRet(const Json::Value& req);

    // A request: the reply's "ret", or -1 when there is none (not sent, no reply, not a JSON object, "ret" no integer).
    // Any thread; one request at a time, the others wait.
    int SendIpc(const Json::Value& req, Json::Value& reply);

    // The same for who does not want the reply's other members.
    int SendIpc(const Json::Value& req);

  protected:
    ~TolmBaseClient() = default;

  private:
    std::shared_ptr<tolm::TolmIpcClient> mClient;
    std::mutex mMutex;  // held from a request to its reply, which is how they are matched
};
