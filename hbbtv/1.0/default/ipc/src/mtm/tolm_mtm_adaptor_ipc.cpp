#include "ipc/src/mtm/tolm_mtm_adaptor_ipc.h"

#include "ipc/src/tolm_json_text.h"
#include "ipc/tolm_log.h"

using namespace tolm;

namespace {

constexpr const char* kTag = families::kMtm.tag;

}  // namespace

TolmMtmAdaptorIpc::TolmMtmAdaptorIpc()
    : TolmAdaptorClient(families::kMtm), TolmBaseServer(*families::kMtm.events, families::kMtm.port) {
    Start();
}

TolmMtmAdaptorIpc::~TolmMtmAdaptorIpc() {
    TolmBaseServer::Stop();
}

void TolmMtmAdaptorIpc::RegisterCallback(TolmMtmCallback* callback) {
    LogScope scope(kTag);
    mCallback = callback;
}

void TolmMtmAdaptorIpc::UnRegisterCallback() {
    LogScope scope(kTag);
    mCallback = nullptr;
}

int TolmMtmAdaptorIpc::OnTabCreated(int tabId) {
    return Call(0, {Int("tabid", tabId)});
}

int TolmMtmAdaptorIpc::OnTabDestroyed(int tabId) {
    return Call(1, {Int("tabid", tabId)});
}

int TolmMtmAdaptorIpc::OnRenderRequestCloseTab(int tabId) {
    return Call(2, {Int("tabid", tabId)});
}

int TolmMtmAdaptorIpc::OnAllTabsDestroyed() {
    return Call(3, {});
}

int TolmMtmAdaptorIpc::OnTabFocus(int tabId) {
    return Call(4, {Int("tabid", tabId)});
}

int TolmMtmAdaptorIpc::OnTabHide(int tabId) {
    return Call(5, {Int("tabid", tabId)});
}

int TolmMtmAdaptorIpc::OnTabShow(int tabId) {
    return Call(6, {Int("tabid", tabId)});
}

// The code of OnTabShow: the platform distinguishes the two by their members.
int TolmMtmAdaptorIpc::OnLoadingStateChanged(bool isLoading, bool canBack, bool canForward) {
    return Call(6, {Bool("is_loading", isLoading), Bool("can_back", canBack), Bool("can_forward", canForward)});
}

int TolmMtmAdaptorIpc::OnAddressBarChanged(int tabId, const std::string& url) {
    return Call(8, {Int("tabid", tabId), Text("url", url)});
}

int TolmMtmAdaptorIpc::OnLoadProgressChanged(int tabId, double progress) {
    return Call(9, {Int("tabid", tabId), Real("progress", progress)});
}

int TolmMtmAdaptorIpc::OnTabTitleChanged(int tabId, const std::string& title) {
    return Call(10, {Int("tabid", tabId), Text("title", title)});
}

// The platform reads the address under the key of the title.
int TolmMtmAdaptorIpc::OnTabURLChanged(int tabId, const std::string& url) {
    return Call(11, {Int("tabid", tabId), Text("title", url)});
}

int TolmMtmAdaptorIpc::OnTabLoadFinished(int tabId, const std::string& url) {
    return Call(12, {Int("tabid", tabId), Text("url", url)});
}

int TolmMtmAdaptorIpc::OnTabLoadFailed(int tabId, const std::string& url, int errorCode,
                                       const std::string& description) {
    return Call(
        13, {Int("tabid", tabId), Text("url", url), Int("error_code", errorCode), Text("description", description)});
}

int TolmMtmAdaptorIpc::OnMemoryWarningDetected(int memStatus) {
    return Call(14, {Int("mem_status", memStatus)});
}

int TolmMtmAdaptorIpc::OnMemoryReduced(int level, int tabId) {
    return Call(15, {Int("tabid", tabId), Int("level", level)});
}

int TolmMtmAdaptorIpc::OnBlinkOutOfMemory(int tabId) {
    return Call(16, {Int("tabid", tabId)});
}

int TolmMtmAdaptorIpc::OnTabDocumentLoadedInFrame(int tabId) {
    return Call(33, {Int("tabid", tabId)});
}

TolmMtmCallback* TolmMtmAdaptorIpc::ReceiverOf(const Json::Value& msg) const {
    if (ReadInt(msg, "type") != families::kMtm.type) {
        TOLM_LOG(ANDROID_LOG_WARN, kTag, "MTM_Assert failed");
        return nullptr;
    }
    TolmMtmCallback* const callback = mCallback;
    if (callback == nullptr) TOLM_LOG(ANDROID_LOG_WARN, kTag, "callback is null");
    return callback;
}

// The results of these are not reported.
void TolmMtmAdaptorIpc::ReceiveIpc(const Json::Value& msg) {
    TolmMtmCallback* const callback = ReceiverOf(msg);
    if (callback == nullptr) return;
    const int tabId = ReadInt(msg, "tabid");
    switch (const int method = ReadInt(msg, "method")) {
        case 21:
            callback->SetAppConfig(tabId, ReadBool(msg, "isBR"));
            break;
        case 22:
            callback->SetDvbOrigin(tabId, ReadText(msg, "origin"));
            break;
        case 24:
            callback->DestroyApp(tabId);
            break;
        case 25:
            callback->DestroyAllApps();
            break;
        case 26:
            callback->ShowHideTab(tabId, ReadBool(msg, "showHide"), ReadBool(msg, "isMulti"));
            break;
        case 27:
            callback->SendKey(ReadInt(msg, "key"), ReadInt(msg, "keyType"), ReadInt(msg, "keyeventId"));
            break;
        case 30:
            callback->LoadURLInTab(tabId, ReadText(msg, "url"), ReadBool(msg, "auto_show"), ReadBool(msg, "isBR"),
                                   ReadText(msg, "appMode"), ReadTexts(msg, "boundaries"));
            break;
        default:
            TOLM_LOG(ANDROID_LOG_WARN, kTag, "unsupported methods:%d", method);
            break;
    }
}

// Without a receiver, the reply stays null. The platform spells "isBr" with a lower-case r here.
void TolmMtmAdaptorIpc::ReceiveIpc(const Json::Value& msg, Json::Value& reply) {
    TolmMtmCallback* const callback = ReceiverOf(msg);
    if (callback == nullptr) return;
    int status = -1;
    switch (const int method = ReadInt(msg, "method")) {
        case 23: {
            int tabId = 0;
            status = callback->CreateApp(ReadText(msg, "url"), ReadBool(msg, "auto_show"), ReadBool(msg, "isBr"),
                                         ReadText(msg, "appMode"), ReadTexts(msg, "boundaries"), tabId);
            if (status == 0) reply["tabid"] = tabId;
            break;
        }
        case 28: {
            std::string xmlFile;
            status = callback->GetXmlFile(ReadText(msg, "url"), ReadText(msg, "appID"), xmlFile);
            reply["xmlFile"] = status == 0 ? xmlFile : "";
            break;
        }
        case 32: {
            int renderId = 0;
            status = callback->GetRenderProcessId(ReadInt(msg, "tabid"), renderId);
            if (status == 0) reply["render_id"] = renderId;
            break;
        }
        case 34: {
            int browserStatus = -1;
            status = callback->Ping(&browserStatus);
            if (status == 0) reply["status"] = browserStatus;
            break;
        }
        default:
            TOLM_LOG(ANDROID_LOG_WARN, kTag, "unsupported methods:%d", method);
            break;
    }
    reply["ret"] = status == 0 ? 0 : -1;
}
