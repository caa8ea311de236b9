#include "ipc/src/tolm_base_client.h"

#include <string>

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_ipc_factory.h"
#include "ipc/tolm_log.h"

namespace {

std::string ToString(const std::vector<unsigned char>& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

TolmBaseClient::TolmBaseClient(TolmIpcKeyId key, int port)
    : mClient(tolm::TolmIpcFactory::GetInstance()->CreateIpcClient(key, port, TOLM_IPC_TYPE_SOCKET)) {}

int TolmBaseClient::SendIpcWithNoRet(const Json::Value& req) {
    const std::vector<unsigned char> bytes = tolm::ToStyledBytes(req);
    if (mClient == nullptr || !mClient->Send(bytes)) return -1;
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "send msg:%s", ToString(bytes).c_str());
    }
    return 0;
}

TolmBaseClient::Outcome TolmBaseClient::ExchangeLocked(const std::vector<unsigned char>& request, Json::Value& reply,
                                                       tolm::MemoryClaim& claim) {
    if (mClient == nullptr) return Outcome::kNoClient;
    std::vector<unsigned char> bytes;
    if (!mClient->SendSync(request, bytes)) return Outcome::kNoReply;
    if (!tolm::ParseJson(bytes, reply, claim)) return Outcome::kNotJson;
    if (!reply.isObject() || !reply["ret"].isInt()) return Outcome::kNoStatus;
    return Outcome::kComplete;
}

int TolmBaseClient::SendIpc(const Json::Value& req, Json::Value& reply, tolm::MemoryClaim& claim) {
    const std::vector<unsigned char> bytes = tolm::ToStyledBytes(req);
    std::lock_guard<std::mutex> lock(mMutex);
    const Outcome outcome = ExchangeLocked(bytes, reply, claim);
    if (outcome != Outcome::kComplete) {
        // One flag per step; 0 marks the step that failed.
        TOLM_LOG(ANDROID_LOG_WARN, tolm::kIpcBaseTag, "SendIpc failed %d %d %d", outcome != Outcome::kNoReply,
                 outcome != Outcome::kNotJson, outcome != Outcome::kNoStatus);
        return -1;
    }
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "send msg:%s, out_msg:%s", ToString(bytes).c_str(),
                 reply.toStyledString().c_str());
    }
    return reply["ret"].asInt();
}

int TolmBaseClient::SendIpc(const Json::Value& req, Json::Value& reply) {
    tolm::MemoryClaim claim;
    return SendIpc(req, reply, claim);
}

int TolmBaseClient::SendIpc(const Json::Value& req) {
    Json::Value reply;
    return SendIpc(req, reply);
}
