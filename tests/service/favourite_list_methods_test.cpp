// Every method of IFavouriteList: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "FavouriteList.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using android::hardware::hidl_string;
using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IFavouriteList;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IFavouriteList> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Release", Status([](auto& s) { return s.Release(kObject); }), 0, R"({"fl_handle": "0x80001000"})", "{}",
             "0", "-1"},
            {"GetLength", Result<uint32_t>([](auto& s, auto cb) { return s.GetLength(kObject, cb); }), 1,
             R"({"fl_handle": "0x80001000"})", R"({"len": 4000000001})", "0 4000000001", "-1 0"},
            {"GetFavID", Result<hidl_string>([](auto& s, auto cb) { return s.GetFavID(kObject, cb); }), 2,
             R"({"fl_handle": "0x80001000"})", R"({"favId": "favId of 2"})", "0 favId of 2", "-1 "},
            {"SetName", Status([](auto& s) { return s.SetName(kObject, "name 3"); }), 3,
             R"({"fl_handle": "0x80001000", "name": "name 3"})", "{}", "0", "-1"},
            {"GetName", Result<hidl_string>([](auto& s, auto cb) { return s.GetName(kObject, cb); }), 4,
             R"({"fl_handle": "0x80001000"})", R"({"name": "name of 4"})", "0 name of 4", "-1 "},
            {"Item", Result<int64_t>([](auto& s, auto cb) { return s.Item(kObject, -3, cb); }), 5,
             R"({"fl_handle": "0x80001000", "index": -3})", R"({"channel": "0xf0000005"})", "0 0xf0000005", "-1 0x0"},
            {"GetChannel", Result<int64_t>([](auto& s, auto cb) { return s.GetChannel(kObject, "channelID 6", cb); }),
             6, R"({"fl_handle": "0x80001000", "channelID": "channelID 6"})", R"({"channel": "0xf0000006"})",
             "0 0xf0000006", "-1 0x0"},
            {"GetChannelByTriplet",
             Result<int64_t>([](auto& s, auto cb) { return s.GetChannelByTriplet(kObject, 1071, 1072, 1073, cb); }), 7,
             R"({"fl_handle": "0x80001000", "onid": 1071, "tsid": 1072, "sid": 1073})", R"({"channel": "0xf0000007"})",
             "0 0xf0000007", "-1 0x0"},
            {"GetChannelBySourceID",
             Result<int64_t>([](auto& s, auto cb) { return s.GetChannelBySourceID(kObject, 1081, cb); }), 8,
             R"({"fl_handle": "0x80001000", "sourceID": 1081})", R"({"channel": "0xf0000008"})", "0 0xf0000008",
             "-1 0x0"},
            {"InsertBefore", Status([](auto& s) { return s.InsertBefore(kObject, -3, "ccid 9"); }), 9,
             R"({"fl_handle": "0x80001000", "index": -3, "ccid": "ccid 9"})", "{}", "0", "-1"},
            {"Remove", Status([](auto& s) { return s.Remove(kObject, -3); }), 10,
             R"({"fl_handle": "0x80001000", "index": -3})", "{}", "0", "-1"},
            {"Commit", Status([](auto& s) { return s.Commit(kObject); }), 11, R"({"fl_handle": "0x80001000"})", "{}",
             "0", "-1"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_vb_fav_list", 5, 15};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(FavouriteList, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(FavouriteListMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

}  // namespace hbbtv::test
