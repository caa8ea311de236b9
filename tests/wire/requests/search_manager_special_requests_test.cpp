// What is worth a look at single operations of the search adaptor, beside the rows of its table.

#include <gtest/gtest.h>

#include <set>

#include "ipc/src/plugin/tolm_search_manager_adaptor_ipc.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmSearchManagerAdaptor;

const void* Pointer(uintptr_t bits) {
    return reinterpret_cast<const void*>(bits);
}

class SearchManagerRequests : public ::testing::Test {
  protected:
    ~SearchManagerRequests() override { Adaptor::DeleteInstance(); }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

}  // namespace

TEST_F(SearchManagerRequests, TheStartTimeStandsAsARealNumber) {
    const std::pair<uint32_t, const char*> times[] = {
        {0, "0.0"}, {1, "1.0"}, {1767225600, "1767225600.0"}, {2147483648u, "2147483648.0"}, {~0u, "4294967295.0"},
    };
    for (const auto& [time, wire] : times) {
        mPlatform.ForgetFrames();
        EXPECT_EQ(Adaptor::GetInstance()->MetaSearch_FindProgrammesFromStream(Pointer(1), Pointer(2), time, -1), 0);
        ASSERT_EQ(mPlatform.Frames().size(), 1u);
        EXPECT_EQ(mPlatform.Frames()[0].payload,
                  std::string("{\n\t\"channel_handle\" : \"0x2\",\n\t\"count\" : -1,\n\t\"method\" : 15,\n"
                              "\t\"search_handle\" : \"0x1\",\n\t\"time\" : ") +
                      wire + ",\n\t\"type\" : 0\n}\n");
    }
}

}  // namespace hbbtv::test
