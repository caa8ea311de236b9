#include "ipc/src/plugin/tolm_capabilities_adaptor_ipc.h"

using namespace tolm;

namespace {

constexpr Family kFamily{"[ipc_capabilities]", 10};
constexpr int kPort = 10;

}  // namespace

TolmCapabilitiesAdaptorIpc::TolmCapabilitiesAdaptorIpc()
    : TolmAdaptorClient(TOLM_IPC_KEY_SERVICE_PLUGIN_TO_HBBTV_CAP, kPort, kFamily) {}

int TolmCapabilitiesAdaptorIpc::GetXmlCapabilities(std::string& xml) {
    return Call(0, {}, {ToText("xml_capabilities", xml)}) == 0 ? 0 : -1;
}

int TolmCapabilitiesAdaptorIpc::GetExtraSDVideoDecodes(unsigned& n) {
    return Call(1, {}, {ToUInt("amount_of_decodes", n)});
}

int TolmCapabilitiesAdaptorIpc::GetExtraHDVideoDecodes(unsigned& n) {
    return Call(2, {}, {ToUInt("amount_of_decodes", n)});
}

int TolmCapabilitiesAdaptorIpc::HasCapability(int type, bool& available) {
    return Call(3, {Int("capability_type", type)}, {ToBool("available", available)});
}

int TolmCapabilitiesAdaptorIpc::GetTerminalCapability(std::string& cap) {
    return Call(4, {}, {ToText("terminalCap", cap)}) == 0 ? 0 : -1;
}
