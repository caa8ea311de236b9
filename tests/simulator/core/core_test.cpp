// Small parts of the simulator alone: frames, handles, names, and events that wait for a reply.
#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "common/frame.h"
#include "common/nearest_name.h"
#include "common/text/pointer_text.h"
#include "core/handles.h"
#include "raw_peers.h"
#include "scratch_directory.h"
#include "server/event_sender.h"

namespace hbbtv::sim {
namespace {

TEST(Frames, AreTwelveBytesOfHeaderAndThePayload) {
    const std::string bytes = Encode({3, 7, "abc"});
    EXPECT_EQ(bytes, std::string("\x03\0\0\0\x03\0\0\0\x07\0\0\0abc", 15));
}

TEST(Frames, ComeOutWholeHoweverTheirBytesArrive) {
    const std::string bytes = Encode({2, -1, "one"}) + Encode({1, 5, ""}) + Encode({2, 6, "three"});
    FrameReader reader;
    std::vector<std::string> payloads;
    for (const char byte : bytes) {
        reader.Take(&byte, 1);
        while (const auto frame = reader.Next()) payloads.push_back(frame->payload);
    }
    EXPECT_EQ(payloads, (std::vector<std::string>{"one", "", "three"}));
    EXPECT_FALSE(reader.InMessage());
}

TEST(Frames, AboveTheLimitAreNamedAndNeverComeOut) {
    FrameReader reader;
    const std::string bytes("\x01\0\x40\0\x02\0\0\0\x07\0\0\0", 12);  // 4 MiB and one byte
    reader.Take(bytes.data(), bytes.size());
    EXPECT_FALSE(reader.Next().has_value());
    EXPECT_EQ(reader.Oversized(), 4194305u);
}

TEST(PointerTexts, AreWrittenAsCDoes) {
    EXPECT_EQ(PointerText(0), "");
    EXPECT_EQ(PointerText(0xFEDC1234), "0xfedc1234");
    EXPECT_EQ(PointerText(0x7fff00000001), "0x7fff00000001");
}

TEST(HandleTexts, HaveEightDigitsAndMoreIfNeeded) {
    EXPECT_EQ(HandleText(0), "0x00000000");
    EXPECT_EQ(HandleText(0xabc), "0x00000abc");
    EXPECT_EQ(HandleText(0x7fff00000001), "0x7fff00000001");
}

TEST(PointerTexts, AreReadAsCDoes) {
    for (const char* null : {"", "(nil)", "0x0"}) EXPECT_EQ(ParsePointer(null), 0u) << null;
    EXPECT_EQ(ParsePointer("0xfedc1234"), 0xfedc1234u);
    EXPECT_EQ(ParsePointer(" 0XFEDC1234 etc"), 0xfedc1234u);
    EXPECT_EQ(ParsePointer("fedc"), 0xfedcu);
    EXPECT_EQ(ParsePointer("0xffffffffffffffff"), UINT64_MAX);
    for (const char* none : {"0x10000000000000000", "handle", "0x", "-1"}) {
        EXPECT_FALSE(ParsePointer(none).has_value()) << none;
    }
}

TEST(Handles, AreNeverZeroAndNeverGivenOutAgainSoon) {
    HandleSource source(1);
    std::set<Handle> seen;
    for (int i = 0; i < 100000; ++i) {
        const Handle handle = source.New();
        EXPECT_NE(handle, 0u);
        EXPECT_TRUE(seen.insert(handle).second);
    }
}

TEST(Handles, NameOneObjectOfOneKindUntilTheyAreRemoved) {
    HandleSource source(1);
    HandleTable<int> numbers(source);
    HandleTable<std::string> texts(source);
    const auto number = std::make_shared<int>(5);
    const Handle handle = numbers.HandleOf(number);
    EXPECT_EQ(numbers.HandleOf(number), handle);
    EXPECT_EQ(numbers.Find(handle), number);
    EXPECT_EQ(texts.Find(handle), nullptr);
    EXPECT_EQ(numbers.Find(handle | (uint64_t{1} << 32)), nullptr);
    EXPECT_TRUE(numbers.Remove(handle));
    EXPECT_FALSE(numbers.Remove(handle));
    EXPECT_EQ(numbers.Find(handle), nullptr);
    EXPECT_NE(numbers.HandleOf(number), handle);
    EXPECT_EQ(numbers.HandleOf(nullptr), 0u);
}

TEST(Handles, OfOneKindComeToAnEndBeforeTheMemoryDoes) {
    HandleSource source(1);
    HandleTable<int> numbers(source);
    std::vector<std::shared_ptr<int>> all;
    EXPECT_THROW(
        {
            for (int i = 0; i < 100000; ++i) numbers.HandleOf(std::make_shared<int>(i));
        },
        std::exception);
}

TEST(NearestName, IsTheOneWithTheFewestChanges) {
    EXPECT_EQ(DidYouMean("nmae", {"name", "network"}), "; did you mean \"name\"?");
    EXPECT_EQ(DidYouMean("zip", {"zap", "signal"}), "; did you mean \"zap\"?");
    EXPECT_EQ(DidYouMean("video", {"video_broadcast", "channel"}), "; did you mean \"video_broadcast\"?");
    EXPECT_EQ(DidYouMean("elephant", {"a", "b"}), "; known are \"a\", \"b\"");
    EXPECT_EQ(DidYouMean("x", {}), "");
}

// An event that waits for a reply. The loop runs on the test's thread, the library's end on another.
class EventWithReply : public testing::Test {
  protected:
    // Runs until there is a reply or none can come.
    Json::Value SendAndWait() {
        Json::Value result;
        mSender.SendAndWait("question", Json::Value(Json::objectValue), [&](const Json::Value& reply) {
            result = reply;
            mLoop.Stop();
        });
        mLoop.Run();
        return result;
    }

    test::ScratchDirectory mDirectory;
    Journal mJournal{false};
    EventLoop mLoop;
    EventSender mSender{mLoop, mJournal, mDirectory / "events", 7, {{"question", Json::Value(Json::objectValue)}}};
};

TEST_F(EventWithReply, IsARequestWhoseReplyArrives) {
    test::LibraryStandIn served(mDirectory / "events");
    std::optional<test::Frame> question;
    std::thread library([&] {
        question = served.Next();
        served.Reply("{\"ret\": 5}");
    });
    EXPECT_EQ(SendAndWait()["ret"], 5);
    library.join();
    ASSERT_TRUE(question.has_value());
    EXPECT_EQ(question->type, 2);
    EXPECT_EQ(question->port, 7);
}

TEST_F(EventWithReply, GetsNoneWhenTheReplyIsEmpty) {
    test::LibraryStandIn served(mDirectory / "events");
    std::thread library([&] {
        served.Next();
        served.Reply("");
    });
    EXPECT_TRUE(SendAndWait().isNull());
    library.join();
}

TEST_F(EventWithReply, IsAskedOnceMoreWhenTheConnectionGoesAndThenGivenUp) {
    test::LibraryStandIn served(mDirectory / "events");
    int asked = 0;
    std::thread library([&] {
        for (; asked < 2; ++asked) {
            served.Next();
            served.Disconnect();
        }
    });
    EXPECT_TRUE(SendAndWait().isNull());
    library.join();
    EXPECT_EQ(asked, 2);
}

TEST_F(EventWithReply, FailsWithoutAServerOnTheSocket) {
    EXPECT_TRUE(SendAndWait().isNull());
}

}  // namespace
}  // namespace hbbtv::sim
