// Every method of IFavouriteListCollection: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "FavouriteListCollection.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IFavouriteListCollection;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IFavouriteListCollection> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Release", Status([](auto& s) { return s.Release(kObject); }), 12, R"({"flc_handle": "0x80001000"})", "{}",
             "0", "-1"},
            {"GetLength", Result<uint32_t>([](auto& s, auto cb) { return s.GetLength(kObject, cb); }), 13,
             R"({"flc_handle": "0x80001000"})", R"({"len": 4000000013})", "0 4000000013", "-1 0"},
            {"Item", Result<int64_t>([](auto& s, auto cb) { return s.Item(kObject, -3, cb); }), 14,
             R"({"flc_handle": "0x80001000", "index": -3})", R"({"list": "0xf0000014"})", "0 0xf0000014", "-1 0x0"},
            {"GetFavouriteList",
             Result<int64_t>([](auto& s, auto cb) { return s.GetFavouriteList(kObject, "favId 15", cb); }), 15,
             R"({"flc_handle": "0x80001000", "favId": "favId 15"})", R"({"list": "0xf0000015"})", "0 0xf0000015",
             "-1 0x0"},
            {"CreateFavouriteList",
             Result<int64_t>([](auto& s, auto cb) { return s.CreateFavouriteList(kObject, "name 16", cb); }), 16,
             R"({"flc_handle": "0x80001000", "name": "name 16"})", R"({"list": "0xf0000016"})", "0 0xf0000016",
             "-1 0x0"},
            {"Remove", Status([](auto& s) { return s.Remove(kObject, -3); }), 17,
             R"({"flc_handle": "0x80001000", "index": -3})", "{}", "0", "-1"},
            {"Commit", Status([](auto& s) { return s.Commit(kObject); }), 18, R"({"flc_handle": "0x80001000"})", "{}",
             "0", "-1"},
            {"ActivateFavouriteList", Status([](auto& s) { return s.ActivateFavouriteList(kObject, "favId 19"); }), 19,
             R"({"flc_handle": "0x80001000", "favId": "favId 19"})", "{}", "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_vb_fav_list_collect", 6, 15};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(FavouriteListCollection, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(FavouriteListCollectionMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

}  // namespace hbbtv::test
