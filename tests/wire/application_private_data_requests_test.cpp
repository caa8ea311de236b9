// Every operation of the adaptor of application private data: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_application_private_data_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmApplicationPrivateDataAdaptorIpc;

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"getFreeMem",
         Ask<Adaptor, int>(&Adaptor::getFreeMem),
         R"({"type": 8, "method": 0})",
         {{"memSize", "int", "-100", "-100"}}},
        {"getCurrentChannel",
         Ask<Adaptor, void*>(&Adaptor::getCurrentChannel),
         R"({"type": 8, "method": 1})",
         {{"channel", "pointer", R"("0xfeed0001")", "0xfeed0001"}}},
    };
    return *rows;
}

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"application_private_data", "[ipc_app_priv]",
                                        "tolm_application_private_data_adaptor_ipc.cpp", &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ApplicationPrivateDataRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ApplicationPrivateDataRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ApplicationPrivateDataRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Texts);

TEST(ApplicationPrivateDataProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ApplicationPrivateDataProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 14, "service_plugin_to_hbbtv_app_priv", 17, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(ApplicationPrivateDataProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(8, Codes(0, 1));
}

TEST(ApplicationPrivateDataProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("getFreeMem", Ask<Adaptor, int>(&Adaptor::getFreeMem), R"({"type": 8, "method": 0})",
                              {"65536"});
}

}  // namespace hbbtv::test
