// The platform's commands to the browser, as the adaptor calls them.
#pragma once

#include <string>
#include <vector>

// Called for one command at a time, on the endpoint's server thread. Each operation returns 0 on success; results are
// used only then.
class TolmMtmCallback {
  public:
    virtual ~TolmMtmCallback() = default;

    virtual int SetAppConfig(int tabId, bool isBroadcastRelated) = 0;
    virtual int SetDvbOrigin(int tabId, const std::string& origin) = 0;
    virtual int CreateApp(const std::string& url, bool autoShow, bool isBroadcastRelated, const std::string& appMode,
                          const std::vector<std::string>& boundaries, int& tabId) = 0;
    virtual int DestroyApp(int tabId) = 0;
    virtual int DestroyAllApps() = 0;
    virtual int ShowHideTab(int tabId, bool show, bool isMulti) = 0;
    virtual int GetXmlFile(const std::string& url, const std::string& appId, std::string& xmlFile) = 0;
    virtual int LoadURLInTab(int tabId, const std::string& url, bool autoShow, bool isBroadcastRelated,
                             const std::string& appMode, const std::vector<std::string>& boundaries) = 0;
    virtual int GetRenderProcessId(int tabId, int& renderId) = 0;
    virtual int SendKey(int key, int keyType, int keyEventId) = 0;
    virtual int Ping(int* status) = 0;
};
