#include "ipc/src/plugin/tolm_parental_control_manager_adaptor_ipc.h"

using namespace tolm;

TolmParentalControlManagerAdaptorIpc::TolmParentalControlManagerAdaptorIpc()
    : TolmAdaptorClient(families::kParentalControlManager) {}

int TolmParentalControlManagerAdaptorIpc::Create(void*& manager) {
    return Call(0, {}, {ToPointer("out_handle", manager)});
}

int TolmParentalControlManagerAdaptorIpc::Destroy(const void* manager) {
    return Call(2, {Pointer("in_handle", manager)});
}

int TolmParentalControlManagerAdaptorIpc::GetParentalRatingSchemeNum(const void* manager, unsigned& n) {
    return Call(21, {Pointer("in_handle", manager)}, {ToIntBits("num", n)});
}

int TolmParentalControlManagerAdaptorIpc::GetParentalRatingSchemeByIndex(const void* manager, unsigned index,
                                                                         void*& scheme) {
    return Call(23, {Pointer("in_handle", manager), UInt("index", index)}, {ToPointer("out_handle", scheme)});
}

int TolmParentalControlManagerAdaptorIpc::AddScheme(const void* manager, const std::string& name,
                                                    const std::string& values, void*& scheme) {
    return Call(25, {Pointer("in_handle", manager), Text("name", name), Text("values", values)},
                {ToPointer("out_handle", scheme)});
}

int TolmParentalControlManagerAdaptorIpc::ReleaseParentalRatingScheme(const void* scheme) {
    return Call(27, {Pointer("in_handle", scheme)});
}

int TolmParentalControlManagerAdaptorIpc::GetParentalRatingSchemeName(const void* scheme, std::string& name) {
    return Call(28, {Pointer("in_handle", scheme)}, {ToText("out_name", name)});
}

int TolmParentalControlManagerAdaptorIpc::GetThreshold(const void* scheme, void*& rating) {
    return Call(30, {Pointer("in_handle", scheme)}, {ToPointer("out_handle", rating)});
}

int TolmParentalControlManagerAdaptorIpc::GetIconUrl(const void* scheme, unsigned index, std::string& url) {
    return Call(33, {Pointer("in_handle", scheme), UInt("index", index)}, {ToText("out_url", url)});
}

int TolmParentalControlManagerAdaptorIpc::ReleaseParentalRating(const void* rating) {
    return Call(35, {Pointer("in_handle", rating)});
}

int TolmParentalControlManagerAdaptorIpc::GetScheme(const void* rating, std::string& scheme) {
    return Call(36, {Pointer("in_handle", rating)}, {ToText("out_scheme", scheme)});
}

int TolmParentalControlManagerAdaptorIpc::GetParentalRatingName(const void* rating, std::string& name) {
    return Call(38, {Pointer("in_handle", rating)}, {ToText("out_name", name)});
}

int TolmParentalControlManagerAdaptorIpc::GetValue(const void* rating, int& value) {
    return Call(40, {Pointer("in_handle", rating)}, {ToInt("out_value", value)});
}

int TolmParentalControlManagerAdaptorIpc::GetLabel(const void* rating, unsigned& labels) {
    return Call(42, {Pointer("in_handle", rating)}, {ToIntBits("out_label", labels)});
}

int TolmParentalControlManagerAdaptorIpc::GetRegion(const void* rating, std::string& region) {
    return Call(44, {Pointer("in_handle", rating)}, {ToText("out_region", region)});
}

int TolmParentalControlManagerAdaptorIpc::GetRatingNum(const void* collection, unsigned& n) {
    return Call(46, {Pointer("in_handle", collection)}, {ToIntBits("out_num", n)});
}

// The key is "in_index" here, but "index" for schemes and icons.
int TolmParentalControlManagerAdaptorIpc::GetRatingByIndex(const void* collection, unsigned index, void*& rating) {
    return Call(47, {Pointer("in_handle", collection), UInt("in_index", index)}, {ToPointer("out_handle", rating)});
}

int TolmParentalControlManagerAdaptorIpc::AddParentalRating(const void* collection, const std::string& scheme,
                                                            const std::string& name, int value, unsigned labels,
                                                            const std::string& region) {
    return Call(48, {Pointer("in_handle", collection), Text("in_scheme", scheme), Text("in_name", name),
                     Int("in_value", value), UInt("in_labels", labels), Text("in_region", region)});
}

int TolmParentalControlManagerAdaptorIpc::ReleaseParentalRatingCollection(const void* collection) {
    return Call(49, {Pointer("in_handle", collection)});
}

int TolmParentalControlManagerAdaptorIpc::GetLocalParentalRating(std::string& countryCode, int* rating) {
    int unwanted = 0;
    return Call(50, {},
                {ToInt("parentRating", rating != nullptr ? *rating : unwanted), ToText("countryCode", countryCode)});
}
