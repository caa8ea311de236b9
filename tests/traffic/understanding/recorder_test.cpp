// The thread that understands what a relay has passed on, and what it does when it is too slow.
#include "traffic/understanding/recorder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <stdexcept>

#include "common/frame.h"
#include "wait_for.h"

namespace hbbtv::traffic {
namespace {

// Holds its thread at the first record until Go().
struct Slow {
    Slow()
        : recorder([this](const Record& record) {
              if (records.empty()) gate.get_future().wait();
              if (record.message.size == 2) small = true;
              records.push_back(record);
          }) {}

    void Go() {
        gate.set_value();
        recorder.Finish();
    }

    std::promise<void> gate;
    std::vector<Record> records;  // of the thread, until Finish()
    std::atomic<bool> small{false};
    Recorder recorder;
};

TEST(Recorder, CountsWhatDoesNotFitAndContinuesWithTheNextMessage) {
    Slow slow;
    slow.recorder.Connected({1, "service_of_a_family", {}, {}});
    const std::string large = Encode({kOneWay, 1, std::string(1u << 20, ' ')});
    constexpr uint64_t kSent = 80;
    for (uint64_t i = 0; i < kSent; ++i) {
        slow.recorder.Bytes(1, Direction::kToServer, large, 0, TimeStamp(), "");
    }
    slow.recorder.Bytes(1, Direction::kToServer, large.substr(0, 1000), 0, TimeStamp(), "");
    slow.Go();
    uint64_t exchanges = 0;
    for (const Record& record : slow.records) exchanges += record.kind == Record::Kind::Exchange ? 1 : 0;
    EXPECT_GT(exchanges, 60u);
    EXPECT_LT(exchanges, 66u) << "64 MiB";
}

TEST(Recorder, ContinuesAfterAnError) {
    std::vector<std::string> notes;
    Recorder recorder([&notes](const Record& record) {
        if (record.note == "first") throw std::runtime_error("no memory");
        notes.push_back(record.note);
    });
    for (const char* note : {"first", "second"}) recorder.Note(note, "");
    recorder.Finish();
    const std::vector<std::string> expected{"a message was passed on, but not recorded: no memory", "second"};
    EXPECT_EQ(notes, expected);
}

TEST(Recorder, SaysHowManyBytesAreMissing) {
    Slow slow;
    slow.recorder.Connected({1, "service_of_a_family", {}, {}});
    const std::string large = Encode({kOneWay, 1, std::string(1u << 20, ' ')});
    for (int i = 0; i < 80; ++i) slow.recorder.Bytes(1, Direction::kToServer, large, 0, TimeStamp(), "");
    slow.recorder.Closed(1, "by the library");
    slow.Go();
    ASSERT_GT(slow.records.size(), 2u);
    const Record& last = slow.records.back();
    EXPECT_EQ(last.note, "by the library") << "no part of a message is left";
    const std::string note = slow.records[slow.records.size() - 2].note;
    const uint64_t lost = std::stoull(note);
    EXPECT_EQ(note, std::to_string(lost) + " bytes were passed on, but not recorded: the recorder is too slow");
    EXPECT_EQ(lost + (slow.records.size() - 3) * large.size(), 80 * large.size());
}

TEST(Recorder, BeginsAgainWithAWholeMessage) {
    Slow slow;
    slow.recorder.Connected({1, "service_of_a_family", {}, {}});
    const std::string large = Encode({kOneWay, 1, std::string(1u << 20, ' ')});
    for (int i = 0; i < 80; ++i) slow.recorder.Bytes(1, Direction::kToServer, large, 0, TimeStamp(), "");
    slow.gate.set_value();
    // The end of a message and the beginning of the next one, until there is room.
    const std::string small = Encode({kOneWay, 1, "{}"});
    const std::string chunk = small.substr(5) + small.substr(0, 5);
    ASSERT_TRUE(test::WaitFor([&] {
        slow.recorder.Bytes(1, Direction::kToServer, chunk, small.size() - 5, TimeStamp(), "");
        return slow.small.load();
    }));
    slow.recorder.Closed(1, "");
    slow.recorder.Finish();
    for (const Record& record : slow.records) {
        const bool end = record.note == "from the library: the message is cut";
        EXPECT_TRUE(end || NameOf(record.kind) != "damaged") << record.note;
    }
}

}  // namespace
}  // namespace hbbtv::traffic
