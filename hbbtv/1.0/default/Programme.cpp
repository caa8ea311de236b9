#include "Programme.h"

#include "ipc/src/plugin/tolm_programme_adaptor_ipc.h"
#include "utils/include/tolm_hidl_answer.h"

namespace vantorel::hardware::hbbtv::implementation {

using Adaptor = TolmProgrammeAdaptorIpc;

Return<int32_t> Programme::Release(int64_t programme) {
    return Status(&Adaptor::Release, Handle(programme));
}

Return<void> Programme::GetName(int64_t programme, GetName_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetName, Handle(programme));
}

Return<int32_t> Programme::SetName(int64_t programme, const hidl_string& name) {
    return Status(&Adaptor::SetName, Handle(programme), name);
}

Return<void> Programme::GetDescription(int64_t programme, GetDescription_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDescription, Handle(programme));
}

Return<int32_t> Programme::SetDescription(int64_t programme, const hidl_string& description) {
    return Status(&Adaptor::SetDescription, Handle(programme), description);
}

Return<void> Programme::GetLongDescription(int64_t programme, GetLongDescription_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetLongDescription, Handle(programme));
}

Return<int32_t> Programme::SetLongDescription(int64_t programme, const hidl_string& description) {
    return Status(&Adaptor::SetLongDescription, Handle(programme), description);
}

Return<void> Programme::GetStartTime(int64_t programme, GetStartTime_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetStartTime, Handle(programme));
}

Return<int32_t> Programme::SetStartTime(int64_t programme, int32_t startTime) {
    return Status(&Adaptor::SetStartTime, Handle(programme), startTime);
}

Return<void> Programme::GetDuration(int64_t programme, GetDuration_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetDuration, Handle(programme));
}

Return<int32_t> Programme::SetDuration(int64_t programme, int32_t duration) {
    return Status(&Adaptor::SetDuration, Handle(programme), duration);
}

Return<void> Programme::GetChannelID(int64_t programme, GetChannelID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetChannelID, Handle(programme));
}

Return<int32_t> Programme::SetChannelID(int64_t programme, const hidl_string& channelId) {
    return Status(&Adaptor::SetChannelID, Handle(programme), channelId);
}

Return<void> Programme::GetProgramID(int64_t programme, GetProgramID_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetProgramID, Handle(programme));
}

Return<int32_t> Programme::SetProgramID(int64_t programme, const hidl_string& programId) {
    return Status(&Adaptor::SetProgramID, Handle(programme), programId);
}

Return<void> Programme::GetProgramIDType(int64_t programme, GetProgramIDType_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetProgramIDType, Handle(programme));
}

Return<int32_t> Programme::SetProgramIDType(int64_t programme, TolmHbbtvProgrammeIDType programIdType) {
    return Status(&Adaptor::SetProgramIDType, Handle(programme), programIdType);
}

Return<void> Programme::GetParentalRatings(int64_t programme, GetParentalRatings_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetParentalRatings, Handle(programme));
}

Return<void> Programme::GetSIDescriptorNum(int64_t programme, GetSIDescriptorNum_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSIDescriptorNum, Handle(programme));
}

Return<void> Programme::GetSIDescriptorByIndex(int64_t programme, uint32_t index, GetSIDescriptorByIndex_cb _hidl_cb) {
    return Answer(_hidl_cb, &Adaptor::GetSIDescriptorByIndex, Handle(programme), index);
}

Return<int32_t> Programme::GetSIDescriptorByEventId(int64_t programme, int32_t descTag, int32_t descTagExt,
                                                    int32_t privateDataSpecifier) {
    return Status(&Adaptor::GetSIDescriptorByEventId, Handle(programme), descTag, descTagExt, privateDataSpecifier);
}

IProgramme* HIDL_FETCH_IProgramme(const char*) {
    return new Programme();
}

}  // namespace vantorel::hardware::hbbtv::implementation
