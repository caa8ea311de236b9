#include "ipc/src/dsmcc/tolm_dsmcc_adaptor_ipc.h"

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kDsmcc.tag;

constexpr int kFileEvent = 4;  // the only "method" that the platform sends

}  // namespace

TolmDsmccAdaptorIpc::TolmDsmccAdaptorIpc()
    : TolmAdaptorClient(families::kDsmcc), TolmBaseServer(*families::kDsmcc.events, families::kDsmcc.port) {
    Start();
}

TolmDsmccAdaptorIpc::~TolmDsmccAdaptorIpc() {
    TolmBaseServer::Stop();
}

// One-way, unlike the release: an event is the answer.
int TolmDsmccAdaptorIpc::RequestFile(const std::string& url, const void* context) {
    return Post(0, {Text("url", url), Pointer("context", context)});
}

int TolmDsmccAdaptorIpc::ReleaseFile(const std::string& url, const void* context) {
    return Call(1, {Text("url", url), Pointer("context", context)});
}

int TolmDsmccAdaptorIpc::BrowserRegisterCallback(const TolmDsmccBrowserCallback& cb) {
    mBrowserCb.Set(cb, nullptr);
    return 0;
}

void TolmDsmccAdaptorIpc::ReceiveIpc(const Json::Value& msg) {
    LogScope scope(kTag);
    if (ReadInt(msg, "method") != kFileEvent) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong method");
        return scope.Abandon();
    }
    void* context = nullptr;
    if (!Read(msg, {ToPointer("context", context)})) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "ParsePointerValue failed context:%p this:%p", context,
                 static_cast<void*>(this));
        return scope.Abandon();
    }
    std::string url;
    std::string filePath;
    int event = 0;
    Read(msg, {ToText("url", url), ToText("filePath", filePath), ToInt("event", event)});
    TOLM_LOG(ANDROID_LOG_DEBUG, kTag, "url:%s filePath:%s event:%d context:%p", url.c_str(), filePath.c_str(), event,
             context);
    DsmccFileCallback(filePath, event, context);
}

void TolmDsmccAdaptorIpc::ReceiveIpc(const Json::Value&, Json::Value&) {
    TOLM_LOG(ANDROID_LOG_WARN, kTag, "Should not be called here");
}

void TolmDsmccAdaptorIpc::DsmccFileCallback(const std::string& filePath, int event, const void* context) {
    LogScope scope(kTag);
    TolmDSMCCFileEventType type = TOLM_DSMCC_FILE_EVENT_0;
    switch (event) {
        case 0:
            type = TOLM_DSMCC_FILE_EVENT_0;
            break;
        case 1:
            type = TOLM_DSMCC_FILE_EVENT_2;
            break;
        case 2:
            type = TOLM_DSMCC_FILE_EVENT_4;
            break;
        case 3:
            type = TOLM_DSMCC_FILE_EVENT_1;
            break;
        case 4:
            return scope.Abandon();
        default:
            TOLM_LOG(ANDROID_LOG_WARN, kTag, "wrong event:%d", event);
            return scope.Abandon();
    }
    if (const TolmDsmccBrowserCallback browserCb = mBrowserCb.Get().function) {
        TOLM_LOG(ANDROID_LOG_DEBUG, kTag, "filePath:%s type:%d context:%p", filePath.c_str(), type, context);
        browserCb(type, filePath.c_str(), context);
    } else {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "m_browserCb is null");
    }
}
