#include "ipc/src/tolm_base_server.h"

#include <string>

#include "ipc/src/tolm_event_taps.h"
#include "ipc/src/tolm_hbbtv_ipc_server_delegate_mgr.h"
#include "ipc/src/tolm_json_text.h"
#include "ipc/src/tolm_watcher.h"
#include "ipc/status/tolm_endpoint_status.h"
#include "ipc/tolm_log.h"

namespace {

// Parses a message. Returns whether it is a JSON object, and logs a warning if not.
bool ParseMessage(const std::vector<unsigned char>& msg, Json::Value& document, tolm::MemoryClaim& claim,
                  TolmIpcKeyId key) {
    if (tolm::ParseJson(msg, document, claim) && document.isObject()) return true;
    tolm::EndpointStatus::Of(key).Refused("a message that is not a JSON object");
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
    if (!ParseMessage(msg, document, claim, mKey)) return;
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG_DOCUMENTS(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "recv msg:%s in m_ipc_id(%x) port(%d)",
                           document.toStyledString().c_str(), mKey, port);
    }
    const tolm::EndpointStatus::Event event(tolm::EndpointStatus::Of(mKey));
    tolm::Watcher::Wake();
    tolm::EventTaps::Show(mKey, "one-way", msg, document);
    ReceiveIpc(document);
}

void TolmBaseServer::OnRecvSync(const std::vector<unsigned char>& msg, std::vector<unsigned char>& reply, int port) {
    tolm::MemoryClaim claim;
    Json::Value document;
    if (!ParseMessage(msg, document, claim, mKey)) return;
    Json::Value out;
    {
        const tolm::EndpointStatus::Event event(tolm::EndpointStatus::Of(mKey));
        tolm::Watcher::Wake();
        tolm::EventTaps::Show(mKey, "request", msg, document);
        ReceiveIpc(document, out);
    }
    reply = tolm::ToStyledBytes(out);
    if (tolm::LogEnabled(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag)) {
        TOLM_LOG_DOCUMENTS(ANDROID_LOG_DEBUG, tolm::kIpcBaseTag, "recv msg:%s and out_msg:%s in m_ipc_id(%x) port(%d)",
                           document.toStyledString().c_str(), std::string(reply.begin(), reply.end()).c_str(), mKey,
                           port);
    }
}
