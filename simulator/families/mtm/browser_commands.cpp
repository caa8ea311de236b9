#include "families/mtm/browser_commands.h"

namespace hbbtv::sim {

namespace {

Json::Value OfTab(int tab) {
    Json::Value members;
    members["tabid"] = tab;
    return members;
}

// The flag that says whether a page is broadcast-related has another spelling in the command that waits for its reply.
void Add(Json::Value& members, const BrowserCommands::Page& page, const char* broadcastRelatedMember) {
    members["url"] = page.url;
    members["auto_show"] = page.autoShow;
    members[broadcastRelatedMember] = page.broadcastRelated;
    members["appMode"] = page.mode;
    members["boundaries"] = Json::Value(Json::arrayValue);
    for (const std::string& boundary : page.boundaries) members["boundaries"].append(boundary);
}

}  // namespace

void BrowserCommands::Send(const char* name, int method, Json::Value members) {
    members["type"] = 0;
    members["method"] = method;
    mSink.Send(name, members);
}

void BrowserCommands::Ask(const char* name, int method, Json::Value members, OnReply onReply) {
    members["type"] = 0;
    members["method"] = method;
    mSink.SendAndWait(name, members, std::move(onReply));
}

void BrowserCommands::SetAppConfig(int tab, bool broadcastRelated) {
    Json::Value members = OfTab(tab);
    members["isBR"] = broadcastRelated;
    Send("SetAppConfig", 21, members);
}

void BrowserCommands::SetDvbOrigin(int tab, const std::string& origin) {
    Json::Value members = OfTab(tab);
    members["origin"] = origin;
    Send("SetDvbOrigin", 22, members);
}

void BrowserCommands::CreateApp(const Page& page, OnReply onReply) {
    Json::Value members;
    Add(members, page, "isBr");
    Ask("CreateApp", 23, members, std::move(onReply));
}

void BrowserCommands::DestroyApp(int tab) {
    Send("DestroyApp", 24, OfTab(tab));
}

void BrowserCommands::DestroyAllApps() {
    Send("DestroyAllApps", 25, {});
}

void BrowserCommands::ShowHideTab(int tab, bool show, bool multi) {
    Json::Value members = OfTab(tab);
    members["showHide"] = show;
    members["isMulti"] = multi;
    Send("ShowHideTab", 26, members);
}

void BrowserCommands::SendKey(int key, int keyType, int keyEventId) {
    Json::Value members;
    members["key"] = key;
    members["keyType"] = keyType;
    members["keyeventId"] = keyEventId;
    Send("SendKey", 27, members);
}

void BrowserCommands::GetXmlFile(const std::string& url, const std::string& applicationId, OnReply onReply) {
    Json::Value members;
    members["url"] = url;
    members["appID"] = applicationId;
    Ask("GetXmlFile", 28, members, std::move(onReply));
}

void BrowserCommands::LoadURLInTab(int tab, const Page& page) {
    Json::Value members = OfTab(tab);
    Add(members, page, "isBR");
    Send("LoadURLInTab", 30, members);
}

void BrowserCommands::GetRenderProcessId(int tab, OnReply onReply) {
    Ask("GetRenderProcessId", 32, OfTab(tab), std::move(onReply));
}

void BrowserCommands::Ping(OnReply onReply) {
    Ask("Ping", 34, {}, std::move(onReply));
}

}  // namespace hbbtv::sim
