#include "ipc/src/tolm_base_client.h"

#include <chrono>
#include <string>

#include "ipc/src/tolm_calling_process.h"
#include "ipc/src/tolm_json_text.h"
#include "ipc/src/tolm_watcher.h"
#include "ipc/tolm_ipc_factory.h"
#include "ipc/tolm_ipc_key_converter.h"
#include "ipc/tolm_log.h"
#include "ipc/tolm_reply_timeout.h"

namespace {

std::string ToString(const std::vector<unsigned char>& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

TolmBaseClient::TolmBaseClient(TolmIpcKeyId key, int port)
    : mStatus(tolm::EndpointStatus::Of(key)),
      mClient(tolm::TolmIpcFactory::GetInstance()->CreateIpcClient(key, port, TOLM_IPC_TYPE_SOCKET)),
      mRequests(tolm::TolmIpcKeyConverter::GetInstance()->GetSocketName(key), tolm::ReplyTimeout()),
      mPosts(tolm::TolmIpcKeyConverter::GetInstance()->GetSocketName(key), tolm::ReplyTimeout()) {}

int TolmBaseClient::SendIpcWithNoRet(const Json::Value& req) {
    return SendIpcWithNoRet(tolm::ToStyledBytes(req), {});
}

int TolmBaseClient::SendIpcWithNoRet(const std::vector<unsigned char>& message, const Operation& operation) {
    tolm::EndpointStatus::Request status(mStatus, operation, tolm::ServedPid(), tolm::EndpointStatus::Form::kOneWay);
    const tolm::CallerQueue::Turn turn(mPosts, &status);
    if (!turn || mClient == nullptr) return -1;
    status.Begin(turn.Begin());
    tolm::Watcher::Wake();
    if (!mClient->Send(message)) return -1;
    status.Succeeded();
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG_DOCUMENTS(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "send msg:%s", ToString(message).c_str());
    }
    return 0;
}

TolmBaseClient::Outcome TolmBaseClient::Exchange(const std::vector<unsigned char>& request, Json::Value& reply,
                                                 tolm::MemoryClaim& claim) {
    if (mClient == nullptr) return Outcome::kNoClient;
    std::vector<unsigned char> bytes;
    if (!mClient->SendSync(request, bytes)) return Outcome::kNoReply;
    if (!tolm::ParseJson(bytes, reply, claim)) return Outcome::kNotJson;
    if (!reply.isObject() || !reply["ret"].isInt()) return Outcome::kNoStatus;
    return Outcome::kComplete;
}

int TolmBaseClient::SendIpc(const std::vector<unsigned char>& request, const Operation& operation, Json::Value& reply,
                            tolm::MemoryClaim& claim, bool& late) {
    tolm::EndpointStatus::Request status(mStatus, operation, tolm::ServedPid());
    const tolm::CallerQueue::Turn turn(mRequests, &status);
    if (!turn) {
        mStatus.SetError("no turn for a caller, which was refused or has died");
        return -1;
    }
    status.Begin(turn.Begin());
    tolm::Watcher::Wake();
    const Outcome outcome = Exchange(request, reply, claim);
    if (outcome != Outcome::kComplete) {
        const std::chrono::milliseconds timeout = tolm::ReplyTimeout();
        late = outcome == Outcome::kNoReply && timeout.count() > 0 &&
               std::chrono::steady_clock::now() - turn.Begin() >= timeout;
        if (outcome == Outcome::kNotJson) mStatus.SetError("a reply that is not JSON, or too large");
        if (outcome == Outcome::kNoStatus) mStatus.SetError("a reply without a status");
        // One flag per step; 0 marks the step that failed.
        TOLM_LOG(ANDROID_LOG_WARN, tolm::kIpcBaseTag, "SendIpc failed %d %d %d", outcome != Outcome::kNoReply,
                 outcome != Outcome::kNotJson, outcome != Outcome::kNoStatus);
        return -1;
    }
    status.Succeeded();
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG_DOCUMENTS(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "send msg:%s, out_msg:%s", ToString(request).c_str(),
                           reply.toStyledString().c_str());
    }
    return reply["ret"].asInt();
}

int TolmBaseClient::SendIpc(const Json::Value& req, Json::Value& reply) {
    tolm::MemoryClaim claim;
    bool late = false;
    return SendIpc(tolm::ToStyledBytes(req), {}, reply, claim, late);
}

int TolmBaseClient::SendIpc(const Json::Value& req) {
    Json::Value reply;
    return SendIpc(req, reply);
}
