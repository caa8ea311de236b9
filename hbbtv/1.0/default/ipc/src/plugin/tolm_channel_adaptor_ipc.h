// The platform's channels and their properties.
#pragma once

#include <string>

#include "ipc/src/tolm_adaptor_call.h"
#include "ipc/src/tolm_adaptor_instance.h"

// `channel` is a channel's handle. The platform defines the integers; the interface package names the known values.
class TolmChannelAdaptorIpc : public tolm::TolmAdaptorClient, public tolm::TolmAdaptorInstance<TolmChannelAdaptorIpc> {
  public:
    int Release(const void* channel);
    int GetChannelType(const void* channel, int& channelType);
    int GetIdType(const void* channel, int& idType);
    int GetCcid(const void* channel, std::string& ccid);
    int GetTunerID(const void* channel, std::string& tunerId);
    int GetOnid(const void* channel, int& onid);
    int GetNid(const void* channel, int& nid);
    int GetTsid(const void* channel, int& tsid);
    int GetSid(const void* channel, int& sid);
    int GetSourceID(const void* channel, int& sourceId);
    int GetFreq(const void* channel, int& freq);
    int GetCni(const void* channel, int& cni);
    int SetName(const void* channel, const std::string& name);
    int GetName(const void* channel, std::string& name);
    int GetMajorChannel(const void* channel, int& majorChannel);
    int GetMinorChannel(const void* channel, int& minorChannel);
    int GetDsd(const void* channel, std::string& dsd);
    int GetFavourite(const void* channel, bool& favourite);
    int GetFavIDsNum(const void* channel, unsigned& num);
    int GetFavIDsNameByIndex(const void* channel, unsigned index, std::string& name);
    int GetLocked(const void* channel, bool& locked);
    int GetManualBlock(const void* channel, bool& manualBlock);
    int GetIpBroadcastID(const void* channel, std::string& ipBroadcastId);
    int GetChannelMaxBitRate(const void* channel, unsigned& maxBitrate);
    int GetChannelTTR(const void* channel, int& ttr);
    int GetRecordable(const void* channel, bool& recordable);
    int SetLongName(const void* channel, const std::string& name);
    int GetLongName(const void* channel, std::string& longname);
    int SetDescription(const void* channel, const std::string& description);
    int GetDescription(const void* channel, std::string& description);
    int GetAuthorized(const void* channel, bool& authorized);
    int SetGenreNum(const void* channel, unsigned num);
    int SetGenreByIndex(const void* channel, unsigned index, const std::string& genre);
    int GetGenreNum(const void* channel, unsigned& num);
    int GetGenreByIndex(const void* channel, unsigned index, std::string& genre);
    int SetHidden(const void* channel, bool hidden);
    int GetHidden(const void* channel, bool& hidden);
    int SetLogoURL(const void* channel, const std::string& url);
    int GetLogoURL(const void* channel, std::string& url);
    int GetField(const void* channel, const std::string& fieldId, std::string& field);
    int GetLogo(const void* channel, int width, int height, std::string& logo);
    int GetTerminalChannel(const void* channel, int& terminalChannel);

  private:
    friend class tolm::TolmAdaptorInstance<TolmChannelAdaptorIpc>;
    TolmChannelAdaptorIpc();
    ~TolmChannelAdaptorIpc() = default;
};
