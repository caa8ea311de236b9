#include "ipc/src/tolm_base_server.h"

#include <string>

#include "ipc/src/tolm_hbbtv_ipc_server_delegate_mgr.h"
#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

namespace {

// Parses a message. Returns whether it is a JSON object, and logs a warning if not.
bool ParseMessage(const std::vector<unsigned char>& msg, Json::Value& document, tolm::MemoryClaim& claim) {
    if (tolm::ParseJson(msg, document, claim) && document.isObject()) return true;
    TOLM_LOG(ANDROID_LOG_WARN, tolm::kIpcBaseTag, "Ipc2Json failed");
    return false;
}

}  // namespace

TolmBaseServer::TolmBaseServer(TolmIpcKeyId key, int port) : mKey(key), mPort(port) {}

TolmBaseServer::~TolmBaseServer() {
    Stop();
}

bool TolmBaseServer::Start() {
    TolmHbbtvIpcServerDelegateMgr::Get().CreateIpcServer(mKey, mPort, this);
    return true;
}

void TolmBaseServer::Stop() {
    TolmHbbtvIpcServerDelegateMgr::Get().DeleteIpcServer(mKey, mPort);
}

void TolmBaseServer::OnRecv(const std::vector<unsigned char>& msg, int port) {
    tolm::MemoryClaim claim;
    Json::Value document;
    if (!ParseMessage(msg, document, claim)) return;
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG_DOCUMENTS(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "recv msg:%s in m_ipc_id(%x) port(%d)",
                           document.toStyledString().c_str(), mKey, port);
    }
    ReceiveIpc(document);
}

void TolmBaseServer::OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) {
    tolm::MemoryClaim claim;
    Json::Value document;
    if (!ParseMessage(msg, document, claim)) return;
    Json::Value out;
    ReceiveIpc(document, out);
    reply = tolm::ToStyledBytes(out);
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG_DOCUMENTS(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "recv msg:%s and out_msg:%s in m_ipc_id(%x) port(%d)",
                           document.toStyledString().c_str(), std::string(reply.begin(), reply.end()).c_str(), mKey,
                           port);
    }
}
