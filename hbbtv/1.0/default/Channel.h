// A channel of the television: IChannel over the platform's channel adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IChannel.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IChannel;

class Channel : public TolmService<IChannel> {
  public:
    Return<int32_t> Release(int64_t channel) override;
    Return<void> GetChannelType(int64_t channel, GetChannelType_cb _hidl_cb) override;
    Return<void> GetIdType(int64_t channel, GetIdType_cb _hidl_cb) override;
    Return<void> GetCcid(int64_t channel, GetCcid_cb _hidl_cb) override;
    Return<void> GetTunerID(int64_t channel, GetTunerID_cb _hidl_cb) override;
    Return<void> GetOnid(int64_t channel, GetOnid_cb _hidl_cb) override;
    Return<void> GetNid(int64_t channel, GetNid_cb _hidl_cb) override;
    Return<void> GetTsid(int64_t channel, GetTsid_cb _hidl_cb) override;
    Return<void> GetSid(int64_t channel, GetSid_cb _hidl_cb) override;
    Return<void> GetSourceID(int64_t channel, GetSourceID_cb _hidl_cb) override;
    Return<void> GetFreq(int64_t channel, GetFreq_cb _hidl_cb) override;
    Return<void> GetCni(int64_t channel, GetCni_cb _hidl_cb) override;
    Return<int32_t> SetName(int64_t channel, const hidl_string& name) override;
    Return<void> GetName(int64_t channel, GetName_cb _hidl_cb) override;
    Return<void> GetMajorChannel(int64_t channel, GetMajorChannel_cb _hidl_cb) override;
    Return<void> GetMinorChannel(int64_t channel, GetMinorChannel_cb _hidl_cb) override;
    Return<void> GetDsd(int64_t channel, GetDsd_cb _hidl_cb) override;
    Return<void> GetFavourite(int64_t channel, GetFavourite_cb _hidl_cb) override;
    Return<void> GetFavIDsNum(int64_t channel, GetFavIDsNum_cb _hidl_cb) override;
    Return<void> GetFavIDsNameByIndex(int64_t channel, uint32_t index, GetFavIDsNameByIndex_cb _hidl_cb) override;
    Return<void> GetLocked(int64_t channel, GetLocked_cb _hidl_cb) override;
    Return<void> GetManualBlock(int64_t channel, GetManualBlock_cb _hidl_cb) override;
    Return<void> GetIpBroadcastID(int64_t channel, GetIpBroadcastID_cb _hidl_cb) override;
    Return<void> GetChannelMaxBitRate(int64_t channel, GetChannelMaxBitRate_cb _hidl_cb) override;
    Return<void> GetChannelTTR(int64_t channel, GetChannelTTR_cb _hidl_cb) override;
    Return<void> GetRecordable(int64_t channel, GetRecordable_cb _hidl_cb) override;
    Return<int32_t> SetLongName(int64_t channel, const hidl_string& name) override;
    Return<void> GetLongName(int64_t channel, GetLongName_cb _hidl_cb) override;
    Return<int32_t> SetDescription(int64_t channel, const hidl_string& description) override;
    Return<void> GetDescription(int64_t channel, GetDescription_cb _hidl_cb) override;
    Return<void> GetAuthorized(int64_t channel, GetAuthorized_cb _hidl_cb) override;
    Return<int32_t> SetGenreNum(int64_t channel, uint32_t num) override;
    Return<int32_t> SetGenreByIndex(int64_t channel, uint32_t index, const hidl_string& genre) override;
    Return<void> GetGenreNum(int64_t channel, GetGenreNum_cb _hidl_cb) override;
    Return<void> GetGenreByIndex(int64_t channel, uint32_t index, GetGenreByIndex_cb _hidl_cb) override;
    Return<int32_t> SetHidden(int64_t channel, bool hidden) override;
    Return<void> GetHidden(int64_t channel, GetHidden_cb _hidl_cb) override;
    Return<int32_t> SetLogoURL(int64_t channel, const hidl_string& url) override;
    Return<void> GetLogoURL(int64_t channel, GetLogoURL_cb _hidl_cb) override;
    Return<void> GetField(int64_t channel, const hidl_string& fieldId, GetField_cb _hidl_cb) override;
    Return<void> GetLogo(int64_t channel, int32_t width, int32_t height, GetLogo_cb _hidl_cb) override;
    Return<void> GetTerminalChannel(int64_t channel, GetTerminalChannel_cb _hidl_cb) override;
};

extern "C" IChannel* HIDL_FETCH_IChannel(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
