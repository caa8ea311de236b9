// The text of requests: byte for byte that of Json::Value::toStyledString() for a document with the same members.
#include <gtest/gtest.h>
#include <json/json.h>

#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "ipc/src/tolm_member.h"

namespace {

using tolm::ObjectText;

// Both ways to write the same members.
struct Both {
    ObjectText text;
    Json::Value document{Json::objectValue};

    std::string Text() {
        const std::vector<unsigned char> bytes = text.AsDocument();
        return std::string(bytes.begin(), bytes.end());
    }
    std::string Expected() const { return document.toStyledString(); }
};

std::string PercentP(const void* pointer) {
    char text[32] = "";
    if (pointer != nullptr) snprintf(text, sizeof(text), "%p", pointer);
    return text;
}

const void* PointerOf(uint64_t number) {
    return reinterpret_cast<const void*>(static_cast<uintptr_t>(number));
}

// Values of every type. Numbers of all magnitudes are equally likely, and a third of the values is at a limit.
class Values {
  public:
    uint64_t Bits() { return mEngine() >> Below(64); }
    size_t Below(size_t end) { return mEngine() % end; }
    int Int() { return Limit<int>(static_cast<int>(Bits())); }
    unsigned UInt() { return Limit<unsigned>(static_cast<unsigned>(Bits())); }

    double Real() {
        const double odd[] = {0.0,
                              -0.0,
                              0.1,
                              1.0,
                              1e15,
                              1e16,
                              1e17,
                              1e300,
                              5e-324,
                              4.0 / 3,
                              16.0 / 9,
                              std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN(),
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::min(),
                              std::numeric_limits<double>::epsilon()};
        switch (Below(4)) {
            case 0:
                return odd[Below(std::size(odd))];
            case 1:
                return static_cast<double>(Int());
            case 2:
                return static_cast<double>(Int()) / 1000;
            default:
                break;
        }
        const uint64_t bits = mEngine();
        double value;
        memcpy(&value, &bits, sizeof(value));
        return value;
    }

    // Plain and other characters, invalid UTF-8, and zero bytes.
    std::string Text() {
        static const std::string kParts[] = {"a",
                                             "http://a.example/x?y=1&z",
                                             " ",
                                             "/",
                                             "\"",
                                             "\\",
                                             "\n",
                                             "\t",
                                             "\x01",
                                             "\x1f",
                                             "\x7f",
                                             std::string(1, '\0'),
                                             "\xc3\xa4",
                                             "\xe2\x82\xac",
                                             "\xf0\x9f\x93\xba",
                                             "\xef\xbf\xbf",
                                             "\xed\xa0\x80",
                                             "\xc3",
                                             "\xe2\x82",
                                             "\xff",
                                             "\x80",
                                             "\xc0\x80",
                                             "\xf8\x88\x80\x80\x80"};
        std::string text;
        const size_t parts = Below(2) == 0 ? 3 : std::size(kParts);  // half of the strings are plain
        for (size_t count = Below(6); count > 0; --count) text += kParts[Below(parts)];
        return text;
    }

  private:
    template <typename T>
    T Limit(T value) {
        constexpr T kLimits[] = {0, 1, static_cast<T>(-1), std::numeric_limits<T>::min(),
                                 std::numeric_limits<T>::max()};
        return Below(3) == 0 ? kLimits[Below(std::size(kLimits))] : value;
    }

    std::mt19937_64 mEngine{14};
};

// Some are the beginnings of others, and each occurs several times.
constexpr const char* kKeys[] = {"type", "method", "t",       "k", "k1",   "k10", "vb_handle", "vb",
                                 "Vb",   "url",    "channel", "_", "chan", "",    "type2"};

void AddInt(Values& values, Both& both, const char* key) {
    const int value = values.Int();
    both.text.Add(tolm::Int(key, value));
    both.document[key] = value;
}

void AddUInt(Values& values, Both& both, const char* key) {
    const unsigned value = values.UInt();
    both.text.Add(tolm::UInt(key, value));
    both.document[key] = value;
}

void AddBool(Values& values, Both& both, const char* key) {
    const bool value = values.Below(2) == 0;
    both.text.Add(tolm::Bool(key, value));
    both.document[key] = value;
}

void AddReal(Values& values, Both& both, const char* key) {
    const double value = values.Real();
    both.text.Add(tolm::Real(key, value));
    both.document[key] = value;
}

void AddText(Values& values, Both& both, const char* key) {
    const std::string value = values.Text();
    both.text.Add(tolm::Text(key, value));
    both.document[key] = value;
}

void AddPointer(Values& values, Both& both, const char* key) {
    const void* value = PointerOf(values.Below(4) == 0 ? 0 : values.Bits());
    both.text.Add(tolm::Pointer(key, value));
    both.document[key] = PercentP(value);
}

void AddAny(Values& values, Both& both) {
    void (*const add[])(Values&, Both&, const char*) = {AddInt, AddUInt, AddBool, AddReal, AddText, AddPointer};
    add[values.Below(std::size(add))](values, both, kKeys[values.Below(std::size(kKeys))]);
}

TEST(RequestText, IsThatOfJsoncppForAMillionRandomValues) {
    Values values;
    for (size_t added = 0; added < 1000000;) {
        Both both;
        for (size_t count = values.Below(12); count > 0; --count, ++added) AddAny(values, both);
        ASSERT_EQ(both.Text(), both.Expected());
    }
}

TEST(RequestText, HasItsMembersInTheOrderOfTheirKeys) {
    ObjectText text;
    for (const tolm::Member& member : {tolm::Int("type", 3), tolm::Int("method", 11), tolm::Bool("b", true)}) {
        text.Add(member);
    }
    const std::vector<unsigned char> bytes = text.AsDocument();
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "{\n\t\"b\" : true,\n\t\"method\" : 11,\n\t\"type\" : 3\n}\n");
}

TEST(RequestText, WithoutMembersIsAnEmptyObject) {
    Both both;
    EXPECT_EQ(both.Text(), both.Expected());
}

TEST(RequestText, HasTheLastOfMembersWithTheSameKey) {
    Both both;
    for (int value = 0; value < 40; ++value) {
        both.text.Add(tolm::Int("k1", value));
        both.text.Add(tolm::Int("k", value));
        both.document["k"] = both.document["k1"] = value;
    }
    EXPECT_EQ(both.Text(), both.Expected());
}

// k10 stands for k100 to k109, too.
TEST(RequestText, CutsTheNamesOfNumberedInts) {
    for (const size_t count : {0, 1, 9, 10, 11, 99, 100, 101, 1000, 1234}) {
        Both both;
        std::vector<int> numbers;
        for (size_t i = 0; i < count; ++i) {
            numbers.push_back(static_cast<int>(7 * i));
            both.document[("k" + std::to_string(i)).substr(0, 3)] = numbers.back();
        }
        both.text.Add(tolm::NumberedInts(numbers));
        EXPECT_EQ(both.Text(), both.Expected()) << count;
    }
}

TEST(RequestText, NumbersPointers) {
    for (const size_t count : {0, 1, 11, 250}) {
        Both both;
        std::vector<void*> pointers;
        for (size_t i = 0; i < count; ++i) {
            pointers.push_back(const_cast<void*>(PointerOf(i * 0x1234567)));
            both.document["channel" + std::to_string(i)] = PercentP(pointers.back());
        }
        both.text.Add(tolm::NumberedPointers("channel", pointers));
        both.text.Add(tolm::UInt("size", 1u));
        both.document["size"] = 1u;
        EXPECT_EQ(both.Text(), both.Expected()) << count;
    }
}

TEST(RequestText, HasArraysOfObjects) {
    for (const size_t count : {0, 1, 2, 30}) {
        Both both;
        std::vector<std::string> elements;
        Json::Value array;
        for (size_t i = 0; i < count; ++i) {
            const std::string text = "line\n" + std::to_string(i);
            elements.push_back(tolm::Element({tolm::Text("text", text), tolm::Bool("on", i == 1)}));
            Json::Value element(Json::objectValue);
            element["text"] = text;
            element["on"] = i == 1;
            array.append(element);
        }
        both.text.Add(tolm::Int("method", 0));
        both.text.Add(tolm::Array("components", elements));
        both.text.Add(tolm::Int("a", 0));
        both.document["method"] = both.document["a"] = 0;
        both.document["components"] = array;
        EXPECT_EQ(both.Text(), both.Expected()) << count;
    }
}

}  // namespace
