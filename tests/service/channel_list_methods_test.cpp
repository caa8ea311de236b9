// Every method of IChannelList: the request it makes of the platform, and what its caller is answered.

#include <gtest/gtest.h>

#include "ChannelList.h"
#include "method_rows.h"

namespace hbbtv::test {

namespace {

using vantorel::hardware::hbbtv::implementation::HIDL_FETCH_IChannelList;

// A handle as a client may give it: the platform gets the low half.
constexpr int64_t kObject = 0x7777777780001000;

struct Rows : ServiceOf<&HIDL_FETCH_IChannelList> {
    static const std::vector<MethodRow>& Requests() {
        static const auto* const rows = new std::vector<MethodRow>{
            {"Release", Status([](auto& s) { return s.Release(kObject); }), 0, R"({"cl_handle": "0x80001000"})", "{}",
             "0", "-1"},
            {"GetLength", Result<uint32_t>([](auto& s, auto cb) { return s.GetLength(kObject, cb); }), 1,
             R"({"cl_handle": "0x80001000"})", R"({"len": 4000000001})", "0 4000000001", "-1 0"},
            {"Item", Result<int64_t>([](auto& s, auto cb) { return s.Item(kObject, -3, cb); }), 2,
             R"({"cl_handle": "0x80001000", "index": -3})", R"({"channel": "0xf0000002"})", "0 0xf0000002", "-1 0x0"},
            {"GetChannel", Result<int64_t>([](auto& s, auto cb) { return s.GetChannel(kObject, "channelID 3", cb); }),
             3, R"({"cl_handle": "0x80001000", "channelID": "channelID 3"})", R"({"channel": "0xf0000003"})",
             "0 0xf0000003", "-1 0x0"},
            {"GetChannelByTriplet", Result<int64_t>([](auto& s, auto cb) {
                 return s.GetChannelByTriplet(kObject, 1041, 1042, 1043, 1044, cb);
             }),
             4, R"({"cl_handle": "0x80001000", "onid": 1041, "tsid": 1042, "sid": 1043, "nid": 1044})",
             R"({"channel": "0xf0000004"})", "0 0xf0000004", "-1 0x0"},
            {"GetChannelBySourceID",
             Result<int64_t>([](auto& s, auto cb) { return s.GetChannelBySourceID(kObject, 1051, cb); }), 5,
             R"({"cl_handle": "0x80001000", "sourceID": 1051})", R"({"channel": "0xf0000005"})", "0 0xf0000005",
             "-1 0x0"},
        };
        return *rows;
    }
};

}  // namespace

const InterfaceUnderTest& UnderTest() {
    static const InterfaceUnderTest tested{"service_plugin_to_hbbtv_vb_chn_list", 4, 14};
    return tested;
}

INSTANTIATE_TEST_SUITE_P(ChannelList, Method, testing::ValuesIn(Rows::Requests()), NameOf);

TEST(ChannelListMethodTable, HasARowForEveryMethod) {
    EXPECT_EQ(HBBTV_METHODS, static_cast<int>(Rows::Requests().size()));
}

}  // namespace hbbtv::test
