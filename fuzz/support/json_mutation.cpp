#include "json_mutation.h"

#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "common/text/json.h"

// Part of libFuzzer, which has no header.
extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t mostBytes);

namespace hbbtv::fuzz {

namespace {

// jsoncpp's limit.
constexpr int kDeepest = 1000;

// Values at the limits of what is read from messages, and handles, as numbers ("@1": the second known one).
const std::vector<Json::Value>& Interesting() {
    static const std::vector<Json::Value> values{0,
                                                 1,
                                                 -1,
                                                 2,
                                                 3,
                                                 7,
                                                 10,
                                                 32,
                                                 64,
                                                 65,
                                                 100,
                                                 255,
                                                 256,
                                                 65535,
                                                 65536,
                                                 65537,
                                                 100000,
                                                 2147483647,
                                                 Json::Int64{-2147483648},
                                                 Json::Int64{2147483648},
                                                 Json::UInt64{4294967295},
                                                 Json::Int64{4294967296},
                                                 Json::Int64{INT64_MAX},
                                                 Json::Int64{INT64_MIN},
                                                 Json::UInt64{UINT64_MAX},
                                                 0.5,
                                                 -0.0,
                                                 -1.5,
                                                 1e19,
                                                 -1e19,
                                                 1e308,
                                                 1e-320,
                                                 9.2233720368547758e18,
                                                 true,
                                                 false,
                                                 Json::Value(),
                                                 Json::Value(Json::arrayValue),
                                                 Json::Value(Json::objectValue),
                                                 "",
                                                 " ",
                                                 "0",
                                                 "1",
                                                 "-1",
                                                 "0x1",
                                                 "0xffffffffffffffff",
                                                 "0x10000000000000000",
                                                 "(nil)",
                                                 "0x",
                                                 "nan",
                                                 "inf",
                                                 "true",
                                                 "a,b",
                                                 "deu",
                                                 "http://a.example/?b#c",
                                                 "dvb://1.3fb.283d.17/a/b.html",
                                                 std::string("a\0b", 3),
                                                 "\xc3\xbc",
                                                 "\xff\xfe",
                                                 "\x1b[2J\r\n",
                                                 std::string(16, ' '),
                                                 std::string(300, 'x'),
                                                 "@0",
                                                 "@1",
                                                 "@2",
                                                 "@3",
                                                 "@4",
                                                 "@5",
                                                 "@6",
                                                 "@7"};
    return values;
}

// All values of a document, outermost first.
void Collect(Json::Value& value, std::vector<Json::Value*>& all) {
    all.push_back(&value);
    if (!value.isArray() && !value.isObject()) return;
    for (Json::Value& element : value) Collect(element, all);
}

std::string AnyName(const Json::Value& object, Random& random) {
    const auto names = object.getMemberNames();
    return names.empty() ? "k" : names[Below(random, names.size())];
}

// "k0", "channel12": lists are sent under numbered names.
std::string NextName(std::string name, Random& random) {
    while (!name.empty() && name.back() >= '0' && name.back() <= '9') name.pop_back();
    return name + std::to_string(Below(random, 12));
}

void ChangeObject(Json::Value& object, const Json::Value& other, Random& random) {
    const std::string name = AnyName(object, random);
    switch (Below(random, 4)) {
        case 0:
            object.removeMember(name);
            break;
        case 1:
            object[NextName(name, random)] = other;
            break;
        case 2:
            object[MutatedBytes(name, name.size() + 4)] = other;
            break;
        default:
            object[name] = other;
    }
}

void ChangeArray(Json::Value& array, const Json::Value& other, Random& random) {
    Json::Value removed;
    const auto at = static_cast<Json::ArrayIndex>(Below(random, array.size() + 1));
    if (Below(random, 3) == 0) {
        array.removeIndex(at, &removed);
    } else if (Below(random, 2) == 0) {
        array.append(other);
        for (Json::ArrayIndex i = array.size() - 1; i > at; --i) array[i].swap(array[i - 1]);
    } else {
        const Json::Value element = array.empty() ? other : array[at % array.size()];
        for (size_t i = Below(random, 40); i > 0; --i) array.append(element);
    }
}

void Change(Json::Value& document, Random& random) {
    std::vector<Json::Value*> all;
    Collect(document, all);
    // Mostly below the top.
    Json::Value& value = *all[std::max(Below(random, all.size()), Below(random, all.size()))];
    const Json::Value other =
        Below(random, 3) == 0 ? *all[Below(random, all.size())] : Interesting()[Below(random, Interesting().size())];
    if (value.isObject() && Below(random, 4) != 0) return ChangeObject(value, other, random);
    if (value.isArray() && Below(random, 4) != 0) return ChangeArray(value, other, random);
    if (value.isString() && Below(random, 3) == 0) {
        const std::string text = value.asString();
        value = MutatedBytes(text, text.size() + 16);
    } else if (value.isIntegral() && Below(random, 3) == 0) {
        const auto distance = static_cast<Json::Int64>(Below(random, 33)) - 16;
        value = static_cast<Json::Int64>(static_cast<uint64_t>(value.isInt64() ? value.asInt64() : 0) +
                                         static_cast<uint64_t>(distance));
    } else {
        value = other;
    }
}

std::string Written(const Json::Value& document) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, document);
}

}  // namespace

size_t Below(Random& random, size_t end) {
    return random() % end;
}

std::string MutatedBytes(const std::string& bytes, size_t mostBytes) {
    std::string changed = bytes;
    changed.resize(std::max(mostBytes, bytes.size()));
    changed.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(changed.data()), bytes.size(), changed.size()));
    return changed;
}

std::string MutatedJson(const std::string& text, size_t mostBytes, Random& random) {
    try {
        if (Below(random, 5) != 0) {
            Json::Value document = ParseJson(text, kDeepest);
            for (size_t i = 1 + Below(random, 3); i > 0; --i) Change(document, random);
            const std::string written = Written(document);
            if (written.size() <= mostBytes) return written;
        }
    } catch (const BadJson&) {
        // Its bytes are changed.
    }
    return MutatedBytes(text, mostBytes);
}

size_t Store(const std::string& mutated, uint8_t* data, size_t mostBytes) {
    const size_t size = std::min(mutated.size(), mostBytes);
    if (size > 0) memcpy(data, mutated.data(), size);
    return size;
}

}  // namespace hbbtv::fuzz
