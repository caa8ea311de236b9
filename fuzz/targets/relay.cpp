// The bytes that a relay passes on. The first line is a rule, or empty. Then come chunks: a byte whose lowest bit is
// the direction and whose others are the length, and the bytes.
#include "common/failure.h"
#include "common/text/json.h"
#include "input.h"
#include "traffic/rules/shaping.h"
#include "traffic/understanding/understanding.h"
#include "traffic/view/line.h"

namespace hbbtv::fuzz {

namespace {

using namespace traffic;

struct Chunk {
    Direction direction;
    std::string bytes;
};

std::vector<Chunk> ChunksOf(const std::string& input) {
    std::vector<Chunk> chunks;
    for (size_t at = 0; at < input.size();) {
        const auto head = static_cast<unsigned char>(input[at++]);
        const std::string bytes = input.substr(at, head / 2 + 1u);
        chunks.push_back({head % 2 == 0 ? Direction::kToServer : Direction::kToCaller, bytes});
        at += bytes.size();
    }
    return chunks;
}

const RelayedConnection& Connection() {
    static const RelayedConnection connection{1, "service_plugin_to_hbbtv_vb_chn", {1, 0, "a"}, {2, 0, "b"}};
    return connection;
}

// What was understood: the exchanges as text, and all bytes that are not messages.
struct Understood {
    std::string exchanges;
    std::string damaged[2];
};

Understood Understand(const std::vector<Chunk>& chunks, bool byteByByte) {
    const TimeStamp time(1, 1);
    Understood understood;
    Understanding understanding([&](const Record& record) {
        const bool library = record.note.rfind("from the library", 0) == 0;
        if (record.kind == Record::Kind::Damaged) {
            understood.damaged[library ? 0 : 1] += record.message.raw;
        } else {
            Json::Value line = ToJson(record);
            line.removeMember("number");
            understood.exchanges += WriteJson(line) + "\n";
        }
        FUZZ_CHECK(Line(record, Names()).find('\n') == std::string::npos);
    });
    understanding.Connected(Connection(), time);
    for (const Chunk& chunk : chunks) {
        for (size_t at = 0; at < chunk.bytes.size();) {
            const size_t count = byteByByte ? 1 : chunk.bytes.size();
            understanding.Take(1, chunk.direction, chunk.bytes.substr(at, count), time, "");
            at += count;
        }
    }
    understanding.Closed(1, "", time);
    FUZZ_CHECK(understanding.Open().empty());
    return understood;
}

void CheckUnderstanding(const std::vector<Chunk>& chunks) {
    const Understood whole = Understand(chunks, false);
    const Understood cut = Understand(chunks, true);
    FUZZ_CHECK(whole.exchanges == cut.exchanges);
    FUZZ_CHECK(whole.damaged[0] == cut.damaged[0] && whole.damaged[1] == cut.damaged[1]);
}

// A rule that was not applied changes nothing.
void CheckRule(const std::string& rule, const std::vector<Chunk>& chunks) {
    Rules rules;
    try {
        rules.Tell(rule);
    } catch (const Failure&) {
        return;
    }
    Shaping shaping(rules, Connection());
    std::string arrived[2], passedOn[2];
    for (const Chunk& chunk : chunks) {
        const auto side = static_cast<size_t>(chunk.direction);
        arrived[side] += chunk.bytes;
        shaping.Collect(chunk.direction, chunk.bytes.data(), chunk.bytes.size());
        while (const auto step = shaping.Next(chunk.direction)) {
            FUZZ_CHECK(!step->verdict.applied.empty() || step->verdict.forward == step->message);
            passedOn[side] += step->message;
        }
        passedOn[side] += shaping.Rest(chunk.direction, false);
    }
    for (const Direction direction : {Direction::kToServer, Direction::kToCaller}) {
        const auto side = static_cast<size_t>(direction);
        passedOn[side] += shaping.Rest(direction, true);
        FUZZ_CHECK(passedOn[side] == arrived[side]);
    }
    FUZZ_CHECK(!rules.List().empty());
}

}  // namespace

}  // namespace hbbtv::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace hbbtv::fuzz;
    const Addressed input = Split(data, size);
    const std::vector<Chunk> chunks = ChunksOf(input.rest);
    CheckUnderstanding(chunks);
    CheckRule(input.line, chunks);
    return 0;
}
