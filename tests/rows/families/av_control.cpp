// The operations of av control.
#include <cstring>

#include "ipc/src/plugin/tolm_av_control_adaptor_ipc.h"
#include "rows.h"

namespace hbbtv::test {

using Adaptor = TolmAVControlAdaptorIpc;

namespace {

TolmHeapText HeapText(const Json::Value& text) {
    return TolmHeapText(strdup(text.asCString()));
}

Outcome ComponentUpdate(const Json::Value& arguments) {
    std::vector<TolmAVCtrlComponentData> components;
    for (const Json::Value& component : arguments[2]) {
        components.push_back({component["actived"].asBool(), component["compTag"].asInt(),
                              component["comp_type"].asInt(), HeapText(component["encoding"]),
                              HeapText(component["language"]), component["audio_channelNum"].asUInt(),
                              component["impaired"].asBool(), component["desc"].asBool()});
    }
    return {Adaptor::GetInstance()->ComponentUpdate(static_cast<TolmHbbtvAVCtrlEvent>(arguments[0].asInt()),
                                                    {arguments[1].asInt()}, components, arguments[3].asInt()),
            {},
            {}};
}

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{
        "av_control",
        "[ipc_avcontrol]",
        "tolm_av_control_adaptor_ipc.cpp",
        &Adaptor::DeleteInstance,
        {
            Row("ComponentUpdate", &ComponentUpdate)
                .Takes({"", "component_type", "components", "current_component_index"})
                .TakesFields({"actived", "compTag", "comp_type", "encoding", "language", "audio_channelNum", "impaired",
                              "desc"}),
        },
        {"RegisterCallback", "UnregisterCallback"},
    };
    return family;
}

}  // namespace hbbtv::test
