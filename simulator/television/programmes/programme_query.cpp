#include "television/programmes/programme_query.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <vector>

#include "common/nearest_name.h"
#include "core/error.h"
#include "core/journal.h"
#include "text/letter_case.h"

namespace hbbtv::sim {

namespace {

constexpr size_t kLargest = 1000;       // comparisons and operators
constexpr size_t kLongestValue = 1024;  // bytes

// OIPF DAE volume 5.
enum class Comparison { Equal = 0, NotEqual, Greater, GreaterOrEqual, Less, LessOrEqual, Contains };

using Texts = std::vector<const std::string*>;
using Numbers = std::vector<int64_t>;

// A property has strings, numbers, or both: a rating has an age and a name.
struct Property {
    const char* name;
    void (*texts)(const Programme&, Texts&);
    void (*numbers)(const Programme&, Numbers&);
};

template <std::string Programme::*member>
void TextOf(const Programme& programme, Texts& texts) {
    texts.push_back(&(programme.*member));
}

template <typename T, T Programme::*member>
void NumberOf(const Programme& programme, Numbers& numbers) {
    numbers.push_back(programme.*member);
}

// A number that is 0 if unknown.
template <int Programme::*member>
void KnownNumberOf(const Programme& programme, Numbers& numbers) {
    if (programme.*member != 0) numbers.push_back(programme.*member);
}

void GenresOf(const Programme& programme, Texts& texts) {
    for (const std::string& genre : programme.genres) texts.push_back(&genre);
}

void RatingNamesOf(const Programme& programme, Texts& texts) {
    if (!programme.ratings) return;
    for (const auto& rating : *programme.ratings) texts.push_back(&rating->name);
}

void RatingAgesOf(const Programme& programme, Numbers& numbers) {
    if (!programme.ratings) return;
    for (const auto& rating : *programme.ratings) numbers.push_back(AgeOf(*rating));
}

template <ComponentType type>
void LanguagesOf(const Programme& programme, Texts& texts) {
    for (const auto& component : programme.Components()) {
        if (component->type == type) texts.push_back(&component->language);
    }
}

const Property kProperties[] = {
    {"name", TextOf<&Programme::name>, nullptr},
    {"description", TextOf<&Programme::description>, nullptr},
    {"longDescription", TextOf<&Programme::longDescription>, nullptr},
    {"startTime", nullptr, NumberOf<std::time_t, &Programme::start>},
    {"duration", nullptr, NumberOf<int, &Programme::duration>},
    {"channelID", TextOf<&Programme::channelId>, nullptr},
    {"programmeID", TextOf<&Programme::id>, nullptr},
    {"programmeIDType", nullptr, NumberOf<int, &Programme::idType>},
    {"episode", nullptr, KnownNumberOf<&Programme::episode>},
    {"totalEpisodes", nullptr, KnownNumberOf<&Programme::totalEpisodes>},
    {"genre", GenresOf, nullptr},
    {"parentalRatings", RatingNamesOf, RatingAgesOf},
    {"audioLanguages", LanguagesOf<ComponentType::Audio>, nullptr},
    {"subtitleLanguages", LanguagesOf<ComponentType::Subtitle>, nullptr},
};

const Property& PropertyOf(const std::string& field) {
    std::set<std::string> known;
    for (const Property& property : kProperties) {
        known.insert(std::string("Programme.") + property.name);
        if (field == std::string("Programme.") + property.name) return property;
    }
    throw Refused("there is no field \"" + Excerpt(field) + "\"" + DidYouMean(field, known));
}

Comparison ComparisonOf(int number) {
    if (number >= 0 && number <= static_cast<int>(Comparison::Contains)) return static_cast<Comparison>(number);
    throw Refused("there is no comparison " + std::to_string(number));
}

// Parses an integer and nothing else.
std::optional<int64_t> NumberIn(const std::string& text) {
    int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (text.empty() || read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return number;
}

// `order` is less than, equal to or greater than 0 if the programme's value is less than, equal to or greater than the
// other.
bool Holds(Comparison comparison, int order) {
    switch (comparison) {
        case Comparison::Greater:
            return order > 0;
        case Comparison::GreaterOrEqual:
            return order >= 0;
        case Comparison::Less:
            return order < 0;
        case Comparison::LessOrEqual:
            return order <= 0;
        default:
            return order == 0;
    }
}

// Of several values one must match. For "not equal" none may be equal.
template <typename Values, typename OrderOf>
bool AnyHolds(Comparison comparison, const Values& values, const OrderOf& orderOf) {
    const bool other = comparison == Comparison::NotEqual;
    const bool any = std::any_of(values.begin(), values.end(), [&](const auto& value) {
        return Holds(other ? Comparison::Equal : comparison, orderOf(value));
    });
    return any != other;
}

class TextComparison : public ProgrammeQuery {
  public:
    TextComparison(const Property& property, Comparison comparison, const std::string& value)
        : ProgrammeQuery(1), mProperty(property), mComparison(comparison), mValue(value), mSmall(SmallLetters(value)) {}

    bool Fits(const Programme& programme) const override {
        Texts texts;
        mProperty.texts(programme, texts);
        if (mComparison != Comparison::Contains) {
            return AnyHolds(mComparison, texts, [this](const std::string* text) { return text->compare(mValue); });
        }
        return std::any_of(texts.begin(), texts.end(), [this](const auto* text) { return Contains(*text, mSmall); });
    }

  private:
    const Property& mProperty;
    Comparison mComparison;
    std::string mValue;
    std::string mSmall;
};

class NumberComparison : public ProgrammeQuery {
  public:
    NumberComparison(const Property& property, Comparison comparison, int64_t value)
        : ProgrammeQuery(1), mProperty(property), mComparison(comparison), mValue(value) {}

    bool Fits(const Programme& programme) const override {
        Numbers numbers;
        mProperty.numbers(programme, numbers);
        return AnyHolds(mComparison, numbers,
                        [this](int64_t number) { return number < mValue ? -1 : (number > mValue ? 1 : 0); });
    }

  private:
    const Property& mProperty;
    Comparison mComparison;
    int64_t mValue;
};

// Digits anywhere in the decimal form of a number.
class DigitsComparison : public ProgrammeQuery {
  public:
    DigitsComparison(const Property& property, std::string value)
        : ProgrammeQuery(1), mProperty(property), mValue(std::move(value)) {}

    bool Fits(const Programme& programme) const override {
        Numbers numbers;
        mProperty.numbers(programme, numbers);
        return std::any_of(numbers.begin(), numbers.end(),
                           [this](int64_t number) { return Contains(std::to_string(number), mValue); });
    }

  private:
    const Property& mProperty;
    std::string mValue;
};

class Combination : public ProgrammeQuery {
  public:
    Combination(bool both, Shared first, Shared second)
        : ProgrammeQuery(1 + first->Size() + second->Size()),
          mBoth(both),
          mFirst(std::move(first)),
          mSecond(std::move(second)) {}

    bool Fits(const Programme& programme) const override {
        return mFirst->Fits(programme) == mBoth ? mSecond->Fits(programme) : !mBoth;
    }

  private:
    bool mBoth;
    Shared mFirst;
    Shared mSecond;
};

class Negation : public ProgrammeQuery {
  public:
    explicit Negation(Shared query) : ProgrammeQuery(1 + query->Size()), mQuery(std::move(query)) {}

    bool Fits(const Programme& programme) const override { return !mQuery->Fits(programme); }

  private:
    Shared mQuery;
};

}  // namespace

ProgrammeQuery::ProgrammeQuery(size_t size) : mSize(size) {
    if (size > kLargest) throw Refused("the query has more than 1000 comparisons and operators");
}

ProgrammeQuery::Shared Compare(const std::string& field, int comparison, const std::string& value) {
    const Property& property = PropertyOf(field);
    const Comparison compared = ComparisonOf(comparison);
    if (value.size() > kLongestValue) throw Refused("the value is longer than 1024 bytes");
    const auto number = NumberIn(value);
    const bool contains = compared == Comparison::Contains;
    if (property.numbers != nullptr && number && !contains) {
        return std::make_shared<NumberComparison>(property, compared, *number);
    }
    if (property.texts != nullptr) return std::make_shared<TextComparison>(property, compared, value);
    if (contains) return std::make_shared<DigitsComparison>(property, value);
    throw Refused("\"" + field + "\" is a number, and \"" + Excerpt(value) + "\" is not");
}

ProgrammeQuery::Shared And(ProgrammeQuery::Shared first, ProgrammeQuery::Shared second) {
    return std::make_shared<Combination>(true, std::move(first), std::move(second));
}

ProgrammeQuery::Shared Or(ProgrammeQuery::Shared first, ProgrammeQuery::Shared second) {
    return std::make_shared<Combination>(false, std::move(first), std::move(second));
}

ProgrammeQuery::Shared Not(ProgrammeQuery::Shared query) {
    return std::make_shared<Negation>(std::move(query));
}

}  // namespace hbbtv::sim
