// The descriptors of a programme: their bytes on the wire, however many and whatever they are.

#include <gtest/gtest.h>

#include "ipc/src/plugin/tolm_programme_adaptor_ipc.h"
#include "lenient_readings.h"
#include "raw_socket.h"
#include "rows.h"
#include "scratch_directory.h"
#include "written_json.h"

namespace hbbtv::test {

namespace {

using Adaptor = TolmProgrammeAdaptorIpc;

const void* const kProgramme = reinterpret_cast<const void*>(0x8000e5f6);

class SIDescriptor : public ::testing::Test {
  protected:
    ~SIDescriptor() override { Adaptor::DeleteInstance(); }

    // What is read from a reply.
    std::string Of(const std::string& reply) {
        mPlatform.SetReply(reply);
        std::string descriptor = "before";
        EXPECT_EQ(Adaptor::GetInstance()->GetSIDescriptorByIndex(kProgramme, 0, descriptor), 0);
        return descriptor;
    }

    ScratchDirectory mDirectory;
    FakePlatform mPlatform{UnderTest().Socket(), "{\"ret\": 0}"};
};

// A reply with so many members "k0", "k1", ..., each the low 8 bits of its number.
std::string Bytes(const std::string& length, int members) {
    std::string reply = "{\"ret\": 0, \"length\": " + length;
    for (int i = 0; i < members; ++i) reply += ", \"k" + std::to_string(i) + "\": " + std::to_string(i % 256);
    return reply + "}";
}

// The bytes of such a reply.
std::string Counted(int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(i);
    return text;
}

}  // namespace

TEST_F(SIDescriptor, OfLengthZeroIsEmpty) {
    EXPECT_EQ(Of("{\"ret\": 0, \"length\": 0}"), "");
    EXPECT_EQ(Of("{\"ret\": 0, \"length\": 0, \"k0\": 65}"), "");
}

TEST_F(SIDescriptor, HoldsTheLowBitsOfItsMembers) {
    EXPECT_EQ(Of("{\"ret\": 0, \"length\": 2, \"k0\": 95, \"k1\": 256}"), std::string("\x5f\0", 2));
    EXPECT_EQ(Of("{\"ret\": 0, \"length\": 4, \"k0\": -1, \"k1\": 511, \"k2\": -128, \"k3\": 2147483647}"),
              "\xff\xff\x80\xff");
}

TEST_F(SIDescriptor, IsAsLongAsItsLengthSays) {
    for (const int length : {1, 9, 10, 11, 99, 100, 101, 255, 256}) {
        EXPECT_EQ(Of(Bytes(std::to_string(length), 300)), Counted(length)) << length;
    }
}

TEST_F(SIDescriptor, HasNoMoreThan256Bytes) {
    for (const char* length : {"257", "300", "65536", "2147483647", "4294967295"}) {
        EXPECT_EQ(Of(Bytes(length, 300)), Counted(256)) << length;
    }
    EXPECT_EQ(Of("{\"ret\": 0, \"length\": 4294967295}"), std::string(256, '\0'));
}

TEST_F(SIDescriptor, HasZeroForAByteThatIsMissing) {
    EXPECT_EQ(Of("{\"ret\": 0, \"length\": 3, \"k0\": 65, \"k2\": 67, \"k3\": 68}"), std::string("A\0C", 3));
}

TEST_F(SIDescriptor, IsEmptyWhenItsLengthMakesNoSense) {
    for (const char* length : {"null", "-1", "-2147483648", "4294967296", "1e300", "\"2\"", "[2]", "{\"a\": 2}"}) {
        EXPECT_EQ(Of(Bytes(length, 3)), "") << length;
    }
    EXPECT_EQ(Of("{\"ret\": 0, \"k0\": 65}"), "");
}

TEST_F(SIDescriptor, ReadsItsBytesLeniently) {
    for (const Reading& reading : ReadingsOf("int", nullptr)) {
        SCOPED_TRACE(reading.json);
        const std::string reply = WithMember("{\"ret\": 0, \"length\": 1}", "k0", reading.json);
        EXPECT_EQ(Of(reply), std::string(1, static_cast<char>(std::stol(reading.shown))));
    }
}

TEST_F(SIDescriptor, ReplacesTheTextThatWasThere) {
    mPlatform.SetReply("{\"ret\": 0, \"length\": 1, \"k0\": 65}");
    std::string descriptor = "a longer text that was there before";
    EXPECT_EQ(Adaptor::GetInstance()->GetSIDescriptorByIndex(kProgramme, 0, descriptor), 0);
    EXPECT_EQ(descriptor, "A");
}

TEST_F(SIDescriptor, IsAskedForAgainByEventIdWithoutWaiting) {
    mPlatform.SetAnswer([](const Frame&) { return std::nullopt; });
    EXPECT_EQ(Adaptor::GetInstance()->GetSIDescriptorByEventId(kProgramme, 0x4d, -1, 0), 0);
    EXPECT_EQ(Adaptor::GetInstance()->Release(kProgramme), 0);
    ASSERT_TRUE(mPlatform.WaitForFrames(2));
    EXPECT_EQ(mPlatform.Frames()[0].payload,
              "{\n\t\"handle\" : \"0x8000e5f6\",\n\t\"in_descTag\" : 77,\n\t\"in_descTagExt\" : -1,\n"
              "\t\"in_priDataSpec\" : 0,\n\t\"method\" : 79,\n\t\"type\" : 5\n}\n");
    EXPECT_EQ(mPlatform.Frames()[1].payload,
              "{\n\t\"handle\" : \"0x8000e5f6\",\n\t\"method\" : 0,\n\t\"type\" : 5\n}\n");
    EXPECT_EQ(mPlatform.Connections(), 1);
}

}  // namespace hbbtv::test
