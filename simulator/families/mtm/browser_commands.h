// The platform's commands to the browser. Those with a reply pass it to the function, or null if there was none.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "family/family.h"

namespace hbbtv::sim {

class BrowserCommands {
  public:
    using OnReply = std::function<void(const Json::Value& reply)>;

    // The parameters of loading a page.
    struct Page {
        std::string url;
        bool autoShow;
        bool broadcastRelated;
        std::string mode;
        std::vector<std::string> boundaries;
    };

    explicit BrowserCommands(EventSink& sink) : mSink(sink) {}

    void SetAppConfig(int tab, bool broadcastRelated);
    void SetDvbOrigin(int tab, const std::string& origin);
    void CreateApp(const Page& page, OnReply onReply);
    void DestroyApp(int tab);
    void DestroyAllApps();
    void ShowHideTab(int tab, bool show, bool multi);
    void SendKey(int key, int keyType, int keyEventId);
    void GetXmlFile(const std::string& url, const std::string& applicationId, OnReply onReply);
    void LoadURLInTab(int tab, const Page& page);
    void GetRenderProcessId(int tab, OnReply onReply);
    void Ping(OnReply onReply);

  private:
    EventSink& mSink;
};

}  // namespace hbbtv::sim
