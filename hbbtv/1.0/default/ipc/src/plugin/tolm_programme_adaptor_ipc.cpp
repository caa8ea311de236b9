#include "ipc/src/plugin/tolm_programme_adaptor_ipc.h"

#include <algorithm>

#include "ipc/src/tolm_json_text.h"

using namespace tolm;

namespace {

// The platform's descriptors are not longer.
constexpr unsigned kMostDescriptorBytes = 256;

// Each byte is a member of its own: "k0", "k1", ...
Target ToDescriptor(std::string& to) {
    return {"length", &to, [](const Json::Value& object, const char* k, void* out) {
                const unsigned length = std::min(ReadUInt(object, k), kMostDescriptorBytes);
                std::string bytes;
                for (unsigned i = 0; i < length; ++i) {
                    bytes += static_cast<char>(ReadInt(object, ("k" + std::to_string(i)).c_str()));
                }
                *static_cast<std::string*>(out) = bytes;
                return true;
            }};
}

}  // namespace

TolmProgrammeAdaptorIpc::TolmProgrammeAdaptorIpc() : TolmAdaptorClient(families::kProgramme) {}

int TolmProgrammeAdaptorIpc::Release(const void* programme) {
    return Post(0, {Pointer("handle", programme)});
}

int TolmProgrammeAdaptorIpc::GetName(const void* programme, std::string& name) {
    return Call(1, {Pointer("handle", programme)}, {ToText("out_name", name)});
}

int TolmProgrammeAdaptorIpc::SetName(const void* programme, const std::string& name) {
    return Call(3, {Pointer("handle", programme), Text("in_name", name)});
}

int TolmProgrammeAdaptorIpc::GetDescription(const void* programme, std::string& description) {
    return Call(7, {Pointer("handle", programme)}, {ToText("out_desc", description)});
}

int TolmProgrammeAdaptorIpc::SetDescription(const void* programme, const std::string& description) {
    return Call(9, {Pointer("handle", programme), Text("in_desc", description)});
}

int TolmProgrammeAdaptorIpc::GetLongDescription(const void* programme, std::string& description) {
    return Call(10, {Pointer("handle", programme)}, {ToText("out_longDesc", description)});
}

int TolmProgrammeAdaptorIpc::SetLongDescription(const void* programme, const std::string& description) {
    return Call(12, {Pointer("handle", programme), Text("in_longDesc", description)});
}

int TolmProgrammeAdaptorIpc::GetStartTime(const void* programme, int& startTime) {
    return Call(13, {Pointer("handle", programme)}, {ToInt("out_startTime", startTime)});
}

int TolmProgrammeAdaptorIpc::SetStartTime(const void* programme, int startTime) {
    return Call(15, {Pointer("handle", programme), Int("in_startTime", startTime)});
}

int TolmProgrammeAdaptorIpc::GetDuration(const void* programme, int& duration) {
    return Call(16, {Pointer("handle", programme)}, {ToInt("out_duration", duration)});
}

int TolmProgrammeAdaptorIpc::SetDuration(const void* programme, int duration) {
    return Call(18, {Pointer("handle", programme), Int("in_duration", duration)});
}

int TolmProgrammeAdaptorIpc::GetChannelID(const void* programme, std::string& channelID) {
    return Call(19, {Pointer("handle", programme)}, {ToText("out_channelID", channelID)});
}

int TolmProgrammeAdaptorIpc::SetChannelID(const void* programme, const std::string& channelID) {
    return Call(21, {Pointer("handle", programme), Text("in_channelID", channelID)});
}

int TolmProgrammeAdaptorIpc::GetProgramID(const void* programme, std::string& programID) {
    return Call(28, {Pointer("handle", programme)}, {ToText("out_programID", programID)});
}

int TolmProgrammeAdaptorIpc::SetProgramID(const void* programme, const std::string& programID) {
    return Call(30, {Pointer("handle", programme), Text("in_programID", programID)});
}

int TolmProgrammeAdaptorIpc::GetProgramIDType(const void* programme, int& programIDType) {
    return Call(31, {Pointer("handle", programme)}, {ToInt("out_programIDType", programIDType)});
}

int TolmProgrammeAdaptorIpc::SetProgramIDType(const void* programme, int programIDType) {
    return Call(33, {Pointer("handle", programme), Int("in_programIDType", programIDType)});
}

int TolmProgrammeAdaptorIpc::GetParentalRatings(const void* programme, void*& collection) {
    return Call(34, {Pointer("handle", programme)}, {ToPointer("out_handle", collection)});
}

int TolmProgrammeAdaptorIpc::GetSIDescriptorNum(const void* programme, unsigned& num) {
    return Call(76, {Pointer("handle", programme)}, {ToUInt("out_num", num)});
}

int TolmProgrammeAdaptorIpc::GetSIDescriptorByIndex(const void* programme, unsigned index, std::string& descriptor) {
    return Call(78, {Pointer("handle", programme), UInt("in_index", index)}, {ToDescriptor(descriptor)});
}

int TolmProgrammeAdaptorIpc::GetSIDescriptorByEventId(const void* programme, int descTag, int descTagExt,
                                                      int privateDataSpecifier) {
    return Post(79, {Pointer("handle", programme), Int("in_descTag", descTag), Int("in_descTagExt", descTagExt),
                     Int("in_priDataSpec", privateDataSpecifier)});
}
