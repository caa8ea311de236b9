#include "ipc/src/plugin/tolm_channel_adaptor_ipc.h"

using namespace tolm;

TolmChannelAdaptorIpc::TolmChannelAdaptorIpc() : TolmAdaptorClient(families::kChannel) {}

int TolmChannelAdaptorIpc::Release(const void* channel) {
    return Call(0, {Pointer("c_handle", channel)});
}

int TolmChannelAdaptorIpc::GetChannelType(const void* channel, int& channelType) {
    return Call(1, {Pointer("c_handle", channel)}, {ToInt("channelType", channelType)});
}

int TolmChannelAdaptorIpc::GetIdType(const void* channel, int& idType) {
    return Call(2, {Pointer("c_handle", channel)}, {ToInt("idType", idType)});
}

int TolmChannelAdaptorIpc::GetCcid(const void* channel, std::string& ccid) {
    return Call(3, {Pointer("c_handle", channel)}, {ToText("ccid", ccid)});
}

int TolmChannelAdaptorIpc::GetTunerID(const void* channel, std::string& tunerId) {
    return Call(4, {Pointer("c_handle", channel)}, {ToText("tunerId", tunerId)});
}

int TolmChannelAdaptorIpc::GetOnid(const void* channel, int& onid) {
    return Call(5, {Pointer("c_handle", channel)}, {ToInt("onid", onid)});
}

int TolmChannelAdaptorIpc::GetNid(const void* channel, int& nid) {
    return Call(6, {Pointer("c_handle", channel)}, {ToInt("nid", nid)});
}

int TolmChannelAdaptorIpc::GetTsid(const void* channel, int& tsid) {
    return Call(7, {Pointer("c_handle", channel)}, {ToInt("tsid", tsid)});
}

int TolmChannelAdaptorIpc::GetSid(const void* channel, int& sid) {
    return Call(8, {Pointer("c_handle", channel)}, {ToInt("sid", sid)});
}

int TolmChannelAdaptorIpc::GetSourceID(const void* channel, int& sourceId) {
    return Call(9, {Pointer("c_handle", channel)}, {ToInt("sourceId", sourceId)});
}

int TolmChannelAdaptorIpc::GetFreq(const void* channel, int& freq) {
    return Call(10, {Pointer("c_handle", channel)}, {ToInt("freq", freq)});
}

int TolmChannelAdaptorIpc::GetCni(const void* channel, int& cni) {
    return Call(11, {Pointer("c_handle", channel)}, {ToInt("cni", cni)});
}

int TolmChannelAdaptorIpc::SetName(const void* channel, const std::string& name) {
    return Call(12, {Pointer("c_handle", channel), Text("name", name)});
}

int TolmChannelAdaptorIpc::GetName(const void* channel, std::string& name) {
    return Call(13, {Pointer("c_handle", channel)}, {ToText("name", name)});
}

int TolmChannelAdaptorIpc::GetMajorChannel(const void* channel, int& majorChannel) {
    return Call(14, {Pointer("c_handle", channel)}, {ToInt("majorChannel", majorChannel)});
}

int TolmChannelAdaptorIpc::GetMinorChannel(const void* channel, int& minorChannel) {
    return Call(15, {Pointer("c_handle", channel)}, {ToInt("minorChannel", minorChannel)});
}

int TolmChannelAdaptorIpc::GetDsd(const void* channel, std::string& dsd) {
    return Call(16, {Pointer("c_handle", channel)}, {ToText("dsd", dsd)});
}

int TolmChannelAdaptorIpc::GetFavourite(const void* channel, bool& favourite) {
    return Call(17, {Pointer("c_handle", channel)}, {ToBool("favourite", favourite)});
}

int TolmChannelAdaptorIpc::GetFavIDsNum(const void* channel, unsigned& num) {
    return Call(18, {Pointer("c_handle", channel)}, {ToUInt("num", num)});
}

int TolmChannelAdaptorIpc::GetFavIDsNameByIndex(const void* channel, unsigned index, std::string& name) {
    return Call(19, {Pointer("c_handle", channel), UInt("index", index)}, {ToText("name", name)});
}

int TolmChannelAdaptorIpc::GetLocked(const void* channel, bool& locked) {
    return Call(20, {Pointer("c_handle", channel)}, {ToBool("locked", locked)});
}

int TolmChannelAdaptorIpc::GetManualBlock(const void* channel, bool& manualBlock) {
    return Call(21, {Pointer("c_handle", channel)}, {ToBool("manualBlock", manualBlock)});
}

int TolmChannelAdaptorIpc::GetIpBroadcastID(const void* channel, std::string& ipBroadcastId) {
    return Call(22, {Pointer("c_handle", channel)}, {ToText("ipBroadcastId", ipBroadcastId)});
}

int TolmChannelAdaptorIpc::GetChannelMaxBitRate(const void* channel, unsigned& maxBitrate) {
    return Call(23, {Pointer("c_handle", channel)}, {ToUInt("maxBitrate", maxBitrate)});
}

int TolmChannelAdaptorIpc::GetChannelTTR(const void* channel, int& ttr) {
    return Call(24, {Pointer("c_handle", channel)}, {ToInt("ttr", ttr)});
}

int TolmChannelAdaptorIpc::GetRecordable(const void* channel, bool& recordable) {
    return Call(25, {Pointer("c_handle", channel)}, {ToBool("recordable", recordable)});
}

int TolmChannelAdaptorIpc::SetLongName(const void* channel, const std::string& name) {
    return Call(26, {Pointer("c_handle", channel), Text("longname", name)});
}

int TolmChannelAdaptorIpc::GetLongName(const void* channel, std::string& longname) {
    return Call(27, {Pointer("c_handle", channel)}, {ToText("longname", longname)});
}

int TolmChannelAdaptorIpc::SetDescription(const void* channel, const std::string& description) {
    return Call(28, {Pointer("c_handle", channel), Text("description", description)});
}

int TolmChannelAdaptorIpc::GetDescription(const void* channel, std::string& description) {
    return Call(29, {Pointer("c_handle", channel)}, {ToText("description", description)});
}

int TolmChannelAdaptorIpc::GetAuthorized(const void* channel, bool& authorized) {
    return Call(30, {Pointer("c_handle", channel)}, {ToBool("authorized", authorized)});
}

int TolmChannelAdaptorIpc::SetGenreNum(const void* channel, unsigned num) {
    return Call(31, {Pointer("c_handle", channel), UInt("num", num)});
}

int TolmChannelAdaptorIpc::SetGenreByIndex(const void* channel, unsigned index, const std::string& genre) {
    return Call(32, {Pointer("c_handle", channel), UInt("index", index), Text("genre", genre)});
}

int TolmChannelAdaptorIpc::GetGenreNum(const void* channel, unsigned& num) {
    return Call(33, {Pointer("c_handle", channel)}, {ToUInt("num", num)});
}

int TolmChannelAdaptorIpc::GetGenreByIndex(const void* channel, unsigned index, std::string& genre) {
    return Call(34, {Pointer("c_handle", channel), UInt("index", index)}, {ToText("genre", genre)});
}

int TolmChannelAdaptorIpc::SetHidden(const void* channel, bool hidden) {
    return Call(35, {Pointer("c_handle", channel), Bool("hidden", hidden)});
}

int TolmChannelAdaptorIpc::GetHidden(const void* channel, bool& hidden) {
    return Call(36, {Pointer("c_handle", channel)}, {ToBool("hidden", hidden)});
}

int TolmChannelAdaptorIpc::SetLogoURL(const void* channel, const std::string& url) {
    return Call(37, {Pointer("c_handle", channel), Text("url", url)});
}

int TolmChannelAdaptorIpc::GetLogoURL(const void* channel, std::string& url) {
    return Call(38, {Pointer("c_handle", channel)}, {ToText("url", url)});
}

int TolmChannelAdaptorIpc::GetField(const void* channel, const std::string& fieldId, std::string& field) {
    return Call(39, {Pointer("c_handle", channel), Text("fieldId", fieldId)}, {ToText("field", field)});
}

int TolmChannelAdaptorIpc::GetLogo(const void* channel, int width, int height, std::string& logo) {
    return Call(40, {Pointer("c_handle", channel), Int("width", width), Int("height", height)}, {ToText("logo", logo)});
}

int TolmChannelAdaptorIpc::GetTerminalChannel(const void* channel, int& terminalChannel) {
    return Call(41, {Pointer("c_handle", channel)}, {ToInt("terminalChannel", terminalChannel)});
}
