#include "families/mtm/browser_commands.h"

namespace hbbtv::sim {

namespace {

Json::Value OfTab(int tab) {
    Json::Value members;
    members["tabid"] = tab;
    return members;
}

// The flag for broadcast-related pages has another spelling in the command with a reply.
void Add(Json::Value& members, const BrowserCommands::Page& page, const char* broadcastRelatedMember) {
    members["url"] = page.url;
    members["auto_show"] = page.autoShow;
    members[broadcastRelatedMember] = page.broadcastRelated;
    members["appMode"] = page.mode;
    members["boundaries"] = Json::Value(Json::arrayValue);
    for (const std::string& boundary : page.boundaries) members["boundaries"].append(boundary);
}

}  // namespace

void BrowserCommands::SetAppConfig(int tab, bool broadcastRelated) {
    Json::Value members = OfTab(tab);
    members["isBR"] = broadcastRelated;
    mSink.Send("SetAppConfig", members);
}

void BrowserCommands::SetDvbOrigin(int tab, const std::string& origin) {
    Json::Value members = OfTab(tab);
    members["origin"] = origin;
    mSink.Send("SetDvbOrigin", members);
}

void BrowserCommands::CreateApp(const Page& page, OnReply onReply) {
    Json::Value members;
    Add(members, page, "isBr");
    mSink.SendAndWait("CreateApp", members, std::move(onReply));
}

void BrowserCommands::DestroyApp(int tab) {
    mSink.Send("DestroyApp", OfTab(tab));
}

void BrowserCommands::DestroyAllApps() {
    mSink.Send("DestroyAllApps", {});
}

void BrowserCommands::ShowHideTab(int tab, bool show, bool multi) {
    Json::Value members = OfTab(tab);
    members["showHide"] = show;
    members["isMulti"] = multi;
    mSink.Send("ShowHideTab", members);
}

void BrowserCommands::SendKey(int key, int keyType, int keyEventId) {
    Json::Value members;
    members["key"] = key;
    members["keyType"] = keyType;
    members["keyeventId"] = keyEventId;
    mSink.Send("SendKey", members);
}

void BrowserCommands::GetXmlFile(const std::string& url, const std::string& applicationId, OnReply onReply) {
    Json::Value members;
    members["url"] = url;
    members["appID"] = applicationId;
    mSink.SendAndWait("GetXmlFile", members, std::move(onReply));
}

void BrowserCommands::LoadURLInTab(int tab, const Page& page) {
    Json::Value members = OfTab(tab);
    Add(members, page, "isBR");
    mSink.Send("LoadURLInTab", members);
}

void BrowserCommands::GetRenderProcessId(int tab, OnReply onReply) {
    mSink.SendAndWait("GetRenderProcessId", OfTab(tab), std::move(onReply));
}

void BrowserCommands::Ping(OnReply onReply) {
    mSink.SendAndWait("Ping", {}, std::move(onReply));
}

}  // namespace hbbtv::sim
