#include "Channel.h"

#include "ipc/src/plugin/tolm_channel_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmChannelAdaptorIpc;

Return<int32_t> Channel::Release(int64_t channel) {
    return Status(&Adaptor::Release, Handle(channel));
}

Return<void> Channel::GetChannelType(int64_t channel, GetChannelType_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelType, Handle(channel));
}

Return<void> Channel::GetIdType(int64_t channel, GetIdType_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetIdType, Handle(channel));
}

Return<void> Channel::GetCcid(int64_t channel, GetCcid_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCcid, Handle(channel));
}

Return<void> Channel::GetTunerID(int64_t channel, GetTunerID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetTunerID, Handle(channel));
}

Return<void> Channel::GetOnid(int64_t channel, GetOnid_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetOnid, Handle(channel));
}

Return<void> Channel::GetNid(int64_t channel, GetNid_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetNid, Handle(channel));
}

Return<void> Channel::GetTsid(int64_t channel, GetTsid_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetTsid, Handle(channel));
}

Return<void> Channel::GetSid(int64_t channel, GetSid_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSid, Handle(channel));
}

Return<void> Channel::GetSourceID(int64_t channel, GetSourceID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSourceID, Handle(channel));
}

Return<void> Channel::GetFreq(int64_t channel, GetFreq_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFreq, Handle(channel));
}

Return<void> Channel::GetCni(int64_t channel, GetCni_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetCni, Handle(channel));
}

Return<int32_t> Channel::SetName(int64_t channel, const hidl_string& name) {
    return Status(&Adaptor::SetName, Handle(channel), name);
}

Return<void> Channel::GetName(int64_t channel, GetName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetName, Handle(channel));
}

Return<void> Channel::GetMajorChannel(int64_t channel, GetMajorChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetMajorChannel, Handle(channel));
}

Return<void> Channel::GetMinorChannel(int64_t channel, GetMinorChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetMinorChannel, Handle(channel));
}

Return<void> Channel::GetDsd(int64_t channel, GetDsd_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDsd, Handle(channel));
}

Return<void> Channel::GetFavourite(int64_t channel, GetFavourite_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFavourite, Handle(channel));
}

Return<void> Channel::GetFavIDsNum(int64_t channel, GetFavIDsNum_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFavIDsNum, Handle(channel));
}

Return<void> Channel::GetFavIDsNameByIndex(int64_t channel, uint32_t index, GetFavIDsNameByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetFavIDsNameByIndex, Handle(channel), index);
}

Return<void> Channel::GetLocked(int64_t channel, GetLocked_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLocked, Handle(channel));
}

Return<void> Channel::GetManualBlock(int64_t channel, GetManualBlock_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetManualBlock, Handle(channel));
}

Return<void> Channel::GetIpBroadcastID(int64_t channel, GetIpBroadcastID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetIpBroadcastID, Handle(channel));
}

Return<void> Channel::GetChannelMaxBitRate(int64_t channel, GetChannelMaxBitRate_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelMaxBitRate, Handle(channel));
}

Return<void> Channel::GetChannelTTR(int64_t channel, GetChannelTTR_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelTTR, Handle(channel));
}

Return<void> Channel::GetRecordable(int64_t channel, GetRecordable_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetRecordable, Handle(channel));
}

Return<int32_t> Channel::SetLongName(int64_t channel, const hidl_string& name) {
    return Status(&Adaptor::SetLongName, Handle(channel), name);
}

Return<void> Channel::GetLongName(int64_t channel, GetLongName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLongName, Handle(channel));
}

Return<int32_t> Channel::SetDescription(int64_t channel, const hidl_string& description) {
    return Status(&Adaptor::SetDescription, Handle(channel), description);
}

Return<void> Channel::GetDescription(int64_t channel, GetDescription_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDescription, Handle(channel));
}

Return<void> Channel::GetAuthorized(int64_t channel, GetAuthorized_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetAuthorized, Handle(channel));
}

Return<int32_t> Channel::SetGenreNum(int64_t channel, uint32_t num) {
    return Status(&Adaptor::SetGenreNum, Handle(channel), num);
}

Return<int32_t> Channel::SetGenreByIndex(int64_t channel, uint32_t index, const hidl_string& genre) {
    return Status(&Adaptor::SetGenreByIndex, Handle(channel), index, genre);
}

Return<void> Channel::GetGenreNum(int64_t channel, GetGenreNum_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetGenreNum, Handle(channel));
}

Return<void> Channel::GetGenreByIndex(int64_t channel, uint32_t index, GetGenreByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetGenreByIndex, Handle(channel), index);
}

Return<int32_t> Channel::SetHidden(int64_t channel, bool hidden) {
    return Status(&Adaptor::SetHidden, Handle(channel), hidden);
}

Return<void> Channel::GetHidden(int64_t channel, GetHidden_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetHidden, Handle(channel));
}

Return<int32_t> Channel::SetLogoURL(int64_t channel, const hidl_string& url) {
    return Status(&Adaptor::SetLogoURL, Handle(channel), url);
}

Return<void> Channel::GetLogoURL(int64_t channel, GetLogoURL_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLogoURL, Handle(channel));
}

Return<void> Channel::GetField(int64_t channel, const hidl_string& fieldId, GetField_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetField, Handle(channel), fieldId);
}

Return<void> Channel::GetLogo(int64_t channel, int32_t width, int32_t height, GetLogo_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLogo, Handle(channel), width, height);
}

Return<void> Channel::GetTerminalChannel(int64_t channel, GetTerminalChannel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetTerminalChannel, Handle(channel));
}

IChannel* HIDL_FETCH_IChannel(const char*) {
    return new Channel();
}

}  // namespace vantorel::hardware::hbbtv::implementation
