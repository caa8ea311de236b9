// Parental control: IParentalControlManager over the platform's parental-control adaptor.
#pragma once

#include <vantorel/hardware/hbbtv/1.0/IParentalControlManager.h>

#include "utils/include/tolm_debug.h"

namespace vantorel::hardware::hbbtv::implementation {

using ::android::hardware::hidl_string;
using ::android::hardware::Return;
using V1_0::IParentalControlManager;

class ParentalControlManager : public TolmService<IParentalControlManager> {
  public:
    Return<void> Create(Create_cb _hidl_cb) override;
    Return<int32_t> Destroy(int64_t manager) override;
    Return<void> GetParentalRatingSchemeNum(int64_t manager, GetParentalRatingSchemeNum_cb _hidl_cb) override;
    Return<void> GetParentalRatingSchemeByIndex(int64_t manager, uint32_t index,
                                                GetParentalRatingSchemeByIndex_cb _hidl_cb) override;
    Return<void> AddScheme(int64_t manager, const hidl_string& name, const hidl_string& values,
                           AddScheme_cb _hidl_cb) override;
    Return<int32_t> ReleaseParentalRatingScheme(int64_t scheme) override;
    Return<void> GetParentalRatingSchemeName(int64_t scheme, GetParentalRatingSchemeName_cb _hidl_cb) override;
    Return<void> GetThreshold(int64_t scheme, GetThreshold_cb _hidl_cb) override;
    Return<void> GetIconUrl(int64_t scheme, uint32_t index, GetIconUrl_cb _hidl_cb) override;
    Return<int32_t> ReleaseParentalRating(int64_t rating) override;
    Return<void> GetScheme(int64_t rating, GetScheme_cb _hidl_cb) override;
    Return<void> GetParentalRatingName(int64_t rating, GetParentalRatingName_cb _hidl_cb) override;
    Return<void> GetValue(int64_t rating, GetValue_cb _hidl_cb) override;
    Return<void> GetLabel(int64_t rating, GetLabel_cb _hidl_cb) override;
    Return<void> GetRegion(int64_t rating, GetRegion_cb _hidl_cb) override;
    Return<void> GetRatingNum(int64_t collection, GetRatingNum_cb _hidl_cb) override;
    Return<void> GetRatingByIndex(int64_t collection, uint32_t index, GetRatingByIndex_cb _hidl_cb) override;
    Return<int32_t> AddParentalRating(int64_t collection, const hidl_string& scheme, const hidl_string& name,
                                      int32_t value, uint32_t labels, const hidl_string& region) override;
    Return<int32_t> ReleaseParentalRatingCollection(int64_t collection) override;
    Return<void> GetLocalParentalRating(GetLocalParentalRating_cb _hidl_cb) override;
};

extern "C" IParentalControlManager* HIDL_FETCH_IParentalControlManager(const char* name);

}  // namespace vantorel::hardware::hbbtv::implementation
