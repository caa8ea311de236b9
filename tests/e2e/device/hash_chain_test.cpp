// The hashes by which a vendor test recognizes a released interface: those that current.txt freezes.

#include <gtest/gtest.h>
#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IVideoBroadcast.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

#include "scratch_directory.h"
#include "system.h"

namespace hbbtv::test {

namespace {

using android::sp;
using android::hidl::base::V1_0::IBase;
using vantorel::hardware::hbbtv::V1_0::IChannel;
using vantorel::hardware::hbbtv::V1_0::IVideoBroadcast;

// Adds the lines "<hash> <interface>" of the file.
void ReadHashes(const std::string& file, std::map<std::string, std::string>& hashes) {
    std::ifstream lines(std::string(HBBTV_SOURCE_DIR) + "/" + file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string hash;
        std::string name;
        if (words >> hash >> name && hash[0] != '#') hashes[name] = hash;
    }
}

std::string ToHex(const android::hardware::hidl_array<uint8_t, 32>& hash) {
    std::string text;
    for (size_t i = 0; i < 32; ++i) {
        char digits[3];
        std::snprintf(digits, sizeof(digits), "%02x", hash[i]);
        text += digits;
    }
    return text;
}

TEST(HashChain, OfEveryServiceIsTheFrozenOne) {
    const ScratchDirectory directory;
    std::map<std::string, std::string> frozen;
    ReadHashes("current.txt", frozen);
    ReadHashes("host/hal/current.txt", frozen);
    ASSERT_EQ(frozen.size(), 27u + 2u);
    const ServiceProcess service;
    const sp<IVideoBroadcast> vb = FindVideoBroadcast();
    ASSERT_NE(vb, nullptr) << service.Output();
    for (const sp<IBase>& one : {sp<IBase>(vb), sp<IBase>(Find<IChannel>())}) {
        std::vector<std::string> names;
        std::vector<std::string> hashes;
        EXPECT_TRUE(one->interfaceChain([&](const auto& chain) { names.assign(chain.begin(), chain.end()); }).isOk());
        EXPECT_TRUE(one->getHashChain([&](const auto& chain) {
                           for (const auto& hash : chain) hashes.push_back(ToHex(hash));
                       })
                        .isOk());
        ASSERT_EQ(names.size(), 2u);
        ASSERT_EQ(hashes.size(), 2u);
        EXPECT_EQ(hashes[0], frozen[names[0]]) << names[0];
        EXPECT_EQ(hashes[1], frozen[names[1]]) << names[1];
    }
}

}  // namespace

}  // namespace hbbtv::test
