// The requests of an adaptor as JSON documents: each becomes one message on its endpoint, with or without a reply.
#pragma once

#include <json/json.h>

#include <memory>
#include <vector>

#include "ipc/src/tolm_caller_queue.h"
#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_ipc_client.h"
#include "ipc/tolm_ipc_types.h"
#include "ipc/tolm_memory_claim.h"

// Thread-safe.
class TolmBaseClient {
  public:
    // `port` identifies this client to the platform. Connects on the first message.
    TolmBaseClient(TolmIpcKeyId key, int port);

    // Sends a one-way message, even while another thread waits for a reply. Returns 0 if it was written, -1 otherwise.
    // Waits for a platform that does not read, as others do behind it, who may be refused.
    int SendIpcWithNoRet(const Json::Value& req);

    // Sends a request and returns the reply's "ret", or -1 if there is none: the request was not sent, no reply came,
    // the reply is not a JSON object, or "ret" is not an integer. One request at a time; others wait for their turn,
    // and may be refused.
    int SendIpc(const Json::Value& req, Json::Value& reply);

    // As above, without access to the reply's other members.
    int SendIpc(const Json::Value& req);

  protected:
    using Operation = tolm::EndpointStatus::Operation;

    ~TolmBaseClient() = default;

    // As above, with the text of the message and what it is for.
    int SendIpcWithNoRet(const std::vector<unsigned char>& message, const Operation& operation);

    // As above, with the text of the request and what it is for. `claim` must outlive the use of the reply. Sets `late`
    // if the request was given up because there was no reply within ReplyTimeout().
    int SendIpc(const std::vector<unsigned char>& request, const Operation& operation, Json::Value& reply,
                tolm::MemoryClaim& claim, bool& late);

  private:
    // The first step of an exchange that failed, if any.
    enum class Outcome { kNoClient, kNoReply, kNotJson, kNoStatus, kComplete };

    // Called in a turn of mRequests.
    Outcome Exchange(const std::vector<unsigned char>& request, Json::Value& reply, tolm::MemoryClaim& claim);

    tolm::EndpointStatus& mStatus;
    std::shared_ptr<tolm::TolmIpcClient> mClient;
    tolm::CallerQueue mRequests;  // a turn is from a request to its reply, which is how they are matched
    tolm::CallerQueue mPosts;     // a turn is until a one-way message is written
};
