#include "ipc/src/plugin/tolm_av_component_adaptor_ipc.h"

using namespace tolm;

TolmAVComponentAdaptorIpc::TolmAVComponentAdaptorIpc() : TolmAdaptorClient(families::kAVComponent) {}

int TolmAVComponentAdaptorIpc::Release(const void* component) {
    return Post(0, {Pointer("handle", component)});
}

int TolmAVComponentAdaptorIpc::GetComponentTag(const void* component, int& tag) {
    return Call(1, {Pointer("handle", component)}, {ToInt("tag", tag)});
}

int TolmAVComponentAdaptorIpc::GetPid(const void* component, int& pid) {
    return Call(2, {Pointer("handle", component)}, {ToInt("pid", pid)});
}

// The type in the reply is the component's, not the family's.
int TolmAVComponentAdaptorIpc::GetType(const void* component, int& type) {
    return Call(3, {Pointer("handle", component)}, {ToInt("type", type)});
}

int TolmAVComponentAdaptorIpc::GetEncoding(const void* component, std::string& encoding) {
    return Call(4, {Pointer("handle", component)}, {ToText("encoding", encoding)});
}

int TolmAVComponentAdaptorIpc::GetEncrypted(const void* component, bool& encrypted) {
    return Call(5, {Pointer("handle", component)}, {ToBool("encrypted", encrypted)});
}

int TolmAVComponentAdaptorIpc::GetAspectRatio(const void* component, double& aspectRatio) {
    return Call(6, {Pointer("handle", component)}, {ToReal("aspect_ratio", aspectRatio)});
}

int TolmAVComponentAdaptorIpc::GetLanguage(const void* component, std::string& language) {
    return Call(7, {Pointer("handle", component)}, {ToText("language", language)});
}

int TolmAVComponentAdaptorIpc::GetAudioDescription(const void* component, bool& audioDescription) {
    return Call(8, {Pointer("handle", component)}, {ToBool("desc", audioDescription)});
}

int TolmAVComponentAdaptorIpc::GetAudioChannelNum(const void* component, unsigned& num) {
    return Call(9, {Pointer("handle", component)}, {ToIntBits("num", num)});
}

int TolmAVComponentAdaptorIpc::GetHearingImpaired(const void* component, bool& hearingImpaired) {
    return Call(10, {Pointer("handle", component)}, {ToBool("impaired", hearingImpaired)});
}

int TolmAVComponentAdaptorIpc::GetLabel(const void* component, std::string& label) {
    return Call(11, {Pointer("handle", component)}, {ToText("label", label)});
}
