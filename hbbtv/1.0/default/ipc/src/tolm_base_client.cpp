#include "ipc/src/tolm_base_client.h"

#include <vector>

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_ipc_factory.h"
#include "ipc/tolm_log.h"

namespace {

constexpr char kTag[] = "[ipc_base]";

}  // namespace

TolmBaseClient::TolmBaseClient(TolmIpcKeyId key, int port)
    : mClient(tolm::TolmIpcFactory::GetInstance()->CreateIpcClient(key, port, TOLM_IPC_TYPE_SOCKET)) {}

int TolmBaseClient::SendIpcWithNoRet(const Json::Value& req) {
    const std::vector<unsigned char> bytes = tolm::ToStyledBytes(req);
    if (mClient == nullptr || !mClient->Send(bytes)) return -1;
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, kTag)) {
        TOLM_LOG(ANDROID_LOG_DEBUG, kTag, "send msg:%s", req.toStyledString().c_str());
    }
    return 0;
}

int TolmBaseClient::SendIpc(const Json::Value& req, Json::Value& reply) {
    const std::vector<unsigned char> bytes = tolm::ToStyledBytes(req);
    std::vector<unsigned char> replyBytes;
    std::lock_guard<std::mutex> lock(mMutex);
    const bool noClient = mClient == nullptr;
    const bool notSent = noClient || !mClient->SendSync(bytes, replyBytes);
    const bool notParsed = notSent || !tolm::ParseJson(replyBytes, reply);
    if (!notParsed && reply.isObject() && reply["ret"].isInt()) {
        if (tolm::LogEnabled(ANDROID_LOG_DEBUG, kTag)) {
            TOLM_LOG(ANDROID_LOG_DEBUG, kTag, "send msg:%s, out_msg:%s", req.toStyledString().c_str(),
                     reply.toStyledString().c_str());
        }
        return reply["ret"].asInt();
    }
    // One flag for each step, 0 for the one that failed.
    const bool sendFailed = notSent && !noClient;
    const bool parseFailed = notParsed && !notSent;
    TOLM_LOG(ANDROID_LOG_WARN, kTag, "SendIpc failed %d %d %d", !sendFailed, !parseFailed, notParsed);
    return -1;
}

int TolmBaseClient::SendIpc(const Json::Value& req) {
    Json::Value reply;
    return SendIpc(req, reply);
}
