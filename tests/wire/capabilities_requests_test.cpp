// Every operation of the capabilities adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_capabilities_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmCapabilitiesAdaptorIpc;

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"GetXmlCapabilities",
         Ask<Adaptor, std::string>(&Adaptor::GetXmlCapabilities),
         R"({"type": 10, "method": 0})",
         {{"xml_capabilities", "string", R"("reply 0")", R"("reply 0")"}},
         "request",
         true},
        {"GetExtraSDVideoDecodes",
         Ask<Adaptor, unsigned>(&Adaptor::GetExtraSDVideoDecodes),
         R"({"type": 10, "method": 1})",
         {{"amount_of_decodes", "uint", "4100000001", "4100000001"}}},
        {"GetExtraHDVideoDecodes",
         Ask<Adaptor, unsigned>(&Adaptor::GetExtraHDVideoDecodes),
         R"({"type": 10, "method": 2})",
         {{"amount_of_decodes", "uint", "4100000002", "4100000002"}}},
        {"HasCapability",
         Ask<Adaptor, bool>(&Adaptor::HasCapability, -301),
         R"({"type": 10, "method": 3, "capability_type": -301})",
         {{"available", "bool", "true", "true"}}},
        {"GetTerminalCapability",
         Ask<Adaptor, std::string>(&Adaptor::GetTerminalCapability),
         R"({"type": 10, "method": 4})",
         {{"terminalCap", "string", R"("reply 4")", R"("reply 4")"}},
         "request",
         true},
    };
    return *rows;
}

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"capabilities", "[ipc_capabilities]", "tolm_capabilities_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(CapabilitiesRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(CapabilitiesRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(CapabilitiesRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Texts);

TEST(CapabilitiesProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(CapabilitiesProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 17, "service_plugin_to_hbbtv_cap", 10, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(CapabilitiesProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(10, Codes(0, 4));
}

TEST(CapabilitiesProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("HasCapability", Ask<Adaptor, bool>(&Adaptor::HasCapability, 7),
                              R"({"type": 10, "method": 3, "capability_type": 7})", {"true"});
}

}  // namespace hbbtv::test
