// Every operation of the local system adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_local_system_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmLocalSystemAdaptorIpc;

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"GetDeviceID",
         Ask<Adaptor, std::string>(&Adaptor::GetDeviceID),
         R"({"type": 6, "method": 0})",
         {{"deviceID", "string", R"("reply 0")", R"("reply 0")"}}},
        {"GetVendorName",
         Ask<Adaptor, std::string>(&Adaptor::GetVendorName),
         R"({"type": 6, "method": 2})",
         {{"vendorName", "string", R"("reply 2")", R"("reply 2")"}}},
        {"GetModelName",
         Ask<Adaptor, std::string>(&Adaptor::GetModelName),
         R"({"type": 6, "method": 4})",
         {{"modelName", "string", R"("reply 4")", R"("reply 4")"}}},
        {"GetFamilyName",
         Ask<Adaptor, std::string>(&Adaptor::GetFamilyName),
         R"({"type": 6, "method": 6})",
         {{"familyName", "string", R"("reply 6")", R"("reply 6")"}}},
        {"GetSoftwareVersion",
         Ask<Adaptor, std::string>(&Adaptor::GetSoftwareVersion),
         R"({"type": 6, "method": 8})",
         {{"softwareVersion", "string", R"("reply 8")", R"("reply 8")"}}},
        {"GetHardwareVersion",
         Ask<Adaptor, std::string>(&Adaptor::GetHardwareVersion),
         R"({"type": 6, "method": 10})",
         {{"hardwareVersion", "string", R"("reply 10")", R"("reply 10")"}}},
        {"GetSerialNumber",
         Ask<Adaptor, std::string>(&Adaptor::GetSerialNumber),
         R"({"type": 6, "method": 12})",
         {{"serialNumber", "string", R"("reply 12")", R"("reply 12")"}}},
        {"GetPvrEnabled",
         Ask<Adaptor, int>(&Adaptor::GetPvrEnabled),
         R"({"type": 6, "method": 14})",
         {{"pvrEnabled", "int", "-1400", "-1400"}}},
        {"GetCiplusEnabled",
         Ask<Adaptor, int>(&Adaptor::GetCiplusEnabled),
         R"({"type": 6, "method": 16})",
         {{"ciplusEnabled", "int", "-1600", "-1600"}}},
    };
    return *rows;
}

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"local_system", "[ipc_configure]", "tolm_local_system_adaptor_ipc.cpp",
                                        &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(LocalSystemRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(LocalSystemRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(LocalSystemRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Texts);

TEST(LocalSystemProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(LocalSystemProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 20, "service_plugin_to_hbbtv_local_system", 11, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(LocalSystemProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(6, {0, 2, 4, 6, 8, 10, 12, 14, 16});
}

TEST(LocalSystemProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample("GetSerialNumber", Ask<Adaptor, std::string>(&Adaptor::GetSerialNumber),
                              R"({"type": 6, "method": 12})", {R"("TV-0042-7")"});
}

}  // namespace hbbtv::test
