#include "ParentalControlManager.h"

#include "ipc/src/plugin/tolm_parental_control_manager_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmParentalControlManagerAdaptorIpc;

Return<void> ParentalControlManager::Create(Create_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::Create);
}

Return<int32_t> ParentalControlManager::Destroy(int64_t manager) {
    return Status(&Adaptor::Destroy, Handle(manager));
}

Return<void> ParentalControlManager::GetParentalRatingSchemeNum(int64_t manager,
                                                                GetParentalRatingSchemeNum_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetParentalRatingSchemeNum, Handle(manager));
}

Return<void> ParentalControlManager::GetParentalRatingSchemeByIndex(int64_t manager, uint32_t index,
                                                                    GetParentalRatingSchemeByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetParentalRatingSchemeByIndex, Handle(manager), index);
}

Return<void> ParentalControlManager::AddScheme(int64_t manager, const hidl_string& name, const hidl_string& values,
                                               AddScheme_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::AddScheme, Handle(manager), name, values);
}

Return<int32_t> ParentalControlManager::ReleaseParentalRatingScheme(int64_t scheme) {
    return Status(&Adaptor::ReleaseParentalRatingScheme, Handle(scheme));
}

Return<void> ParentalControlManager::GetParentalRatingSchemeName(int64_t scheme,
                                                                 GetParentalRatingSchemeName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetParentalRatingSchemeName, Handle(scheme));
}

Return<void> ParentalControlManager::GetThreshold(int64_t scheme, GetThreshold_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetThreshold, Handle(scheme));
}

Return<void> ParentalControlManager::GetIconUrl(int64_t scheme, uint32_t index, GetIconUrl_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetIconUrl, Handle(scheme), index);
}

Return<int32_t> ParentalControlManager::ReleaseParentalRating(int64_t rating) {
    return Status(&Adaptor::ReleaseParentalRating, Handle(rating));
}

Return<void> ParentalControlManager::GetScheme(int64_t rating, GetScheme_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetScheme, Handle(rating));
}

Return<void> ParentalControlManager::GetParentalRatingName(int64_t rating, GetParentalRatingName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetParentalRatingName, Handle(rating));
}

Return<void> ParentalControlManager::GetValue(int64_t rating, GetValue_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetValue, Handle(rating));
}

Return<void> ParentalControlManager::GetLabel(int64_t rating, GetLabel_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLabel, Handle(rating));
}

Return<void> ParentalControlManager::GetRegion(int64_t rating, GetRegion_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetRegion, Handle(rating));
}

Return<void> ParentalControlManager::GetRatingNum(int64_t collection, GetRatingNum_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetRatingNum, Handle(collection));
}

Return<void> ParentalControlManager::GetRatingByIndex(int64_t collection, uint32_t index,
                                                      GetRatingByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetRatingByIndex, Handle(collection), index);
}

Return<int32_t> ParentalControlManager::AddParentalRating(int64_t collection, const hidl_string& scheme,
                                                          const hidl_string& name, int32_t value, uint32_t labels,
                                                          const hidl_string& region) {
    return Status(&Adaptor::AddParentalRating, Handle(collection), scheme, name, value, labels, region);
}

Return<int32_t> ParentalControlManager::ReleaseParentalRatingCollection(int64_t collection) {
    return Status(&Adaptor::ReleaseParentalRatingCollection, Handle(collection));
}

Return<void> ParentalControlManager::GetLocalParentalRating(GetLocalParentalRating_cb _hidl_cb) {
    return AnswerBy<Adaptor>(_hidl_cb, [](Adaptor& adaptor, hidl_string& countryCode, int32_t& rating) {
        std::string code;
        const int status = adaptor.GetLocalParentalRating(code, &rating);
        countryCode = code;
        return status;
    });
}

IParentalControlManager* HIDL_FETCH_IParentalControlManager(const char*) {
    return new ParentalControlManager();
}

}  // namespace vantorel::hardware::hbbtv::implementation
