#include "ipc/src/plugin/tolm_capabilities_adaptor_ipc.h"

using namespace tolm;

TolmCapabilitiesAdaptorIpc::TolmCapabilitiesAdaptorIpc() : TolmAdaptorClient(families::kCapabilities) {}

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
