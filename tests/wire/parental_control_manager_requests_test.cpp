// Every operation of the parental control adaptor: its call, its request and its reply, written out.

#include "ipc/src/plugin/tolm_parental_control_manager_adaptor_ipc.h"
#include "request_rows.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmParentalControlManagerAdaptorIpc;

const void* const kManager = Handle(0x8000aa01);
const void* const kScheme = Handle(0x8000aa02);
const void* const kRating = Handle(0x8000aa03);
const void* const kCollection = Handle(0x8000aa04);

// The wire has an int where the operation gives its bits as an unsigned: here they are an int again.
template <typename Operation>
std::function<Outcome()> AskBits(Operation operation, const void* object) {
    return [operation, object] {
        unsigned bits = static_cast<unsigned>(Before<int>());
        const int status = (Adaptor::GetInstance()->*operation)(object, bits);
        return Outcome{status, {Show(static_cast<int>(bits))}};
    };
}

Outcome GetLocalParentalRating() {
    std::string countryCode = Before<std::string>();
    int rating = Before<int>();
    const int status = Adaptor::GetInstance()->GetLocalParentalRating(countryCode, &rating);
    return {status, {Show(rating), Show(countryCode)}};
}

const std::vector<Row>& Rows() {
    static const auto* const rows = new std::vector<Row>{
        {"Create",
         Ask<Adaptor, void*>(&Adaptor::Create),
         R"({"type": 13, "method": 0})",
         {{"out_handle", "pointer", R"("0xfeed0000")", "0xfeed0000"}}},
        {"Destroy",
         Tell<Adaptor>(&Adaptor::Destroy, kManager),
         R"({"type": 13, "method": 2, "in_handle": "0x8000aa01"})",
         {}},
        {"GetParentalRatingSchemeNum",
         AskBits(&Adaptor::GetParentalRatingSchemeNum, kManager),
         R"({"type": 13, "method": 21, "in_handle": "0x8000aa01"})",
         {{"num", "int", "-2101", "-2101"}}},
        {"GetParentalRatingSchemeByIndex",
         Ask<Adaptor, void*>(&Adaptor::GetParentalRatingSchemeByIndex, kManager, 4200002301u),
         R"({"type": 13, "method": 23, "in_handle": "0x8000aa01", "index": 4200002301})",
         {{"out_handle", "pointer", R"("0xfeed0023")", "0xfeed0023"}}},
        {"AddScheme",
         Ask<Adaptor, void*>(&Adaptor::AddScheme, kManager, std::string("text 25 of name"),
                             std::string("text 25 of values")),
         R"({"type": 13, "method": 25, "in_handle": "0x8000aa01", "name": "text 25 of name", )"
         R"("values": "text 25 of values"})",
         {{"out_handle", "pointer", R"("0xfeed0025")", "0xfeed0025"}}},
        {"ReleaseParentalRatingScheme",
         Tell<Adaptor>(&Adaptor::ReleaseParentalRatingScheme, kScheme),
         R"({"type": 13, "method": 27, "in_handle": "0x8000aa02"})",
         {}},
        {"GetParentalRatingSchemeName",
         Ask<Adaptor, std::string>(&Adaptor::GetParentalRatingSchemeName, kScheme),
         R"({"type": 13, "method": 28, "in_handle": "0x8000aa02"})",
         {{"out_name", "string", R"("reply 28")", R"("reply 28")"}}},
        {"GetThreshold",
         Ask<Adaptor, void*>(&Adaptor::GetThreshold, kScheme),
         R"({"type": 13, "method": 30, "in_handle": "0x8000aa02"})",
         {{"out_handle", "pointer", R"("0xfeed0030")", "0xfeed0030"}}},
        {"GetIconUrl",
         Ask<Adaptor, std::string>(&Adaptor::GetIconUrl, kScheme, 4200003301u),
         R"({"type": 13, "method": 33, "in_handle": "0x8000aa02", "index": 4200003301})",
         {{"out_url", "string", R"("reply 33")", R"("reply 33")"}}},
        {"ReleaseParentalRating",
         Tell<Adaptor>(&Adaptor::ReleaseParentalRating, kRating),
         R"({"type": 13, "method": 35, "in_handle": "0x8000aa03"})",
         {}},
        {"GetScheme",
         Ask<Adaptor, std::string>(&Adaptor::GetScheme, kRating),
         R"({"type": 13, "method": 36, "in_handle": "0x8000aa03"})",
         {{"out_scheme", "string", R"("reply 36")", R"("reply 36")"}}},
        {"GetParentalRatingName",
         Ask<Adaptor, std::string>(&Adaptor::GetParentalRatingName, kRating),
         R"({"type": 13, "method": 38, "in_handle": "0x8000aa03"})",
         {{"out_name", "string", R"("reply 38")", R"("reply 38")"}}},
        {"GetValue",
         Ask<Adaptor, int>(&Adaptor::GetValue, kRating),
         R"({"type": 13, "method": 40, "in_handle": "0x8000aa03"})",
         {{"out_value", "int", "-4001", "-4001"}}},
        {"GetLabel",
         AskBits(&Adaptor::GetLabel, kRating),
         R"({"type": 13, "method": 42, "in_handle": "0x8000aa03"})",
         {{"out_label", "int", "-4201", "-4201"}}},
        {"GetRegion",
         Ask<Adaptor, std::string>(&Adaptor::GetRegion, kRating),
         R"({"type": 13, "method": 44, "in_handle": "0x8000aa03"})",
         {{"out_region", "string", R"("reply 44")", R"("reply 44")"}}},
        {"GetRatingNum",
         AskBits(&Adaptor::GetRatingNum, kCollection),
         R"({"type": 13, "method": 46, "in_handle": "0x8000aa04"})",
         {{"out_num", "int", "-4601", "-4601"}}},
        {"GetRatingByIndex",
         Ask<Adaptor, void*>(&Adaptor::GetRatingByIndex, kCollection, 4200004701u),
         R"({"type": 13, "method": 47, "in_handle": "0x8000aa04", "in_index": 4200004701})",
         {{"out_handle", "pointer", R"("0xfeed0047")", "0xfeed0047"}}},
        {"AddParentalRating",
         Tell<Adaptor>(&Adaptor::AddParentalRating, kCollection, std::string("text 48 of scheme"),
                       std::string("text 48 of name"), -4801, 4200004802u, std::string("text 48 of region")),
         R"({"type": 13, "method": 48, "in_handle": "0x8000aa04", "in_scheme": "text 48 of scheme", )"
         R"("in_name": "text 48 of name", "in_value": -4801, "in_labels": 4200004802, )"
         R"("in_region": "text 48 of region"})",
         {}},
        {"ReleaseParentalRatingCollection",
         Tell<Adaptor>(&Adaptor::ReleaseParentalRatingCollection, kCollection),
         R"({"type": 13, "method": 49, "in_handle": "0x8000aa04"})",
         {}},
        {"GetLocalParentalRating",
         &GetLocalParentalRating,
         R"({"type": 13, "method": 50})",
         {{"parentRating", "int", "-5001", "-5001"}, {"countryCode", "string", R"("reply 50")", R"("reply 50")"}}},
    };
    return *rows;
}

const TextRow kTexts[] = {
    {"AddScheme",
     [](const std::string& text) {
         void* scheme = nullptr;
         Adaptor::GetInstance()->AddScheme(kManager, text, text, scheme);
     },
     R"({"type": 13, "method": 25, "in_handle": "0x8000aa01", "name": "", "values": ""})"},
    {"AddParentalRating",
     [](const std::string& text) { Adaptor::GetInstance()->AddParentalRating(kCollection, text, text, 3, 4, text); },
     R"({"type": 13, "method": 48, "in_handle": "0x8000aa04", "in_scheme": "", "in_name": "", )"
     R"("in_value": 3, "in_labels": 4, "in_region": ""})"},
};

}  // namespace

const FamilyUnderTest& UnderTest() {
    static const FamilyUnderTest family{"parental_control_manager", "[ipc_parental_control]",
                                        "tolm_parental_control_manager_adaptor_ipc.cpp", &Adaptor::DeleteInstance};
    return family;
}

INSTANTIATE_TEST_SUITE_P(ParentalControlManagerRows, Request, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ParentalControlManagerRows, Reply, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ParentalControlManagerRows, PlatformProcess, ::testing::ValuesIn(Rows()), NameOf);
INSTANTIATE_TEST_SUITE_P(ParentalControlManagerRows, Texts, ::testing::ValuesIn(kTexts), NameOfTextRow);

TEST(ParentalControlManagerProtocol, HasTheRowsOfThisTest) {
    ExpectTheProtocolsOperations(Rows());
}

TEST(ParentalControlManagerProtocol, NamesTheEndpoints) {
    ExpectTheProtocolsEndpoint("requests", 24, "service_plugin_to_hbbtv_pcm", 16, "platform");
    ExpectNoEventsInTheProtocol();
}

TEST(ParentalControlManagerProtocol, HasTheTypeAndTheCodesOfTheFamily) {
    ExpectTheProtocolsCodes(13, {0, 2, 21, 23, 25, 27, 28, 30, 33, 35, 36, 38, 40, 42, 44, 46, 47, 48, 49, 50});
}

TEST(ParentalControlManagerProtocol, HasAnExampleThatIsWhatTravels) {
    ExpectTheProtocolsExample(
        "AddParentalRating",
        Tell<Adaptor>(&Adaptor::AddParentalRating, Handle(0x7e20), std::string("dvb-si"), std::string("12"), 12, 0u,
                      std::string("DE")),
        R"({"type": 13, "method": 48, "in_handle": "0x7e20", "in_scheme": "dvb-si", "in_name": "12", "in_value": 12, )"
        R"("in_labels": 0, "in_region": "DE"})",
        {});
}

}  // namespace hbbtv::test
