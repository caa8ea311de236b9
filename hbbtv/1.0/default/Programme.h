// A programme of the broadcast schedule: IProgramme over the platform's programme adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IProgramme.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IProgramme;
using V1_0::TolmHbbtvProgrammeIDType;

class Programme : public TolmService<IProgramme> {
  public:
    Return<int32_t> Release(int64_t programme) override;
    Return<void> GetName(int64_t programme, GetName_cb _hidl_cb) override;
    Return<int32_t> SetName(int64_t programme, const hidl_string& name) override;
    Return<void> GetDescription(int64_t programme, GetDescription_cb _hidl_cb) override;
    Return<int32_t> SetDescription(int64_t programme, const hidl_string& description) override;
    Return<void> GetLongDescription(int64_t programme, GetLongDescription_cb _hidl_cb) override;
    Return<int32_t> SetLongDescription(int64_t programme, const hidl_string& description) override;
    Return<void> GetStartTime(int64_t programme, GetStartTime_cb _hidl_cb) override;
    Return<int32_t> SetStartTime(int64_t programme, int32_t startTime) override;
    Return<void> GetDuration(int64_t programme, GetDuration_cb _hidl_cb) override;
    Return<int32_t> SetDuration(int64_t programme, int32_t duration) override;
    Return<void> GetChannelID(int64_t programme, GetChannelID_cb _hidl_cb) override;
    Return<int32_t> SetChannelID(int64_t programme, const hidl_string& channelId) override;
    Return<void> GetProgramID(int64_t programme, GetProgramID_cb _hidl_cb) override;
    Return<int32_t> SetProgramID(int64_t programme, const hidl_string& programId) override;
    Return<void> GetProgramIDType(int64_t programme, GetProgramIDType_cb _hidl_cb) override;
    Return<int32_t> SetProgramIDType(int64_t programme, TolmHbbtvProgrammeIDType programIdType) override;
    Return<void> GetParentalRatings(int64_t programme, GetParentalRatings_cb _hidl_cb) override;
    Return<void> GetSIDescriptorNum(int64_t programme, GetSIDescriptorNum_cb _hidl_cb) override;
    Return<void> GetSIDescriptorByIndex(int64_t programme, uint32_t index, GetSIDescriptorByIndex_cb _hidl_cb) override;
    Return<int32_t> GetSIDescriptorByEventId(int64_t programme, int32_t descTag, int32_t descTagExt,
                                             int32_t privateDataSpecifier) override;
};

extern "C" IProgramme* HIDL_FETCH_IProgramme(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
