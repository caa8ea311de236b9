#include "traffic/view/statistics.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "common/text/counted.h"
#include "common/text/printable.h"
#include "traffic/view/line.h"
#include "traffic/view/members.h"

namespace hbbtv::traffic {

namespace {

constexpr size_t kSlowest = 10;
constexpr size_t kMostOpen = 100;

// More names than protocol/ has; a peer that invents further ones gets one row for them all.
constexpr size_t kMostOperations = 2000;

std::string Milliseconds3(uint64_t microseconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.3f", static_cast<double>(microseconds) / 1000);
    return text;
}

Json::Value Count(uint64_t number) {
    return static_cast<Json::UInt64>(number);
}

Record WithoutPayloads(const Record& record) {
    Record head;
    head.kind = record.kind;
    head.number = record.number;
    head.time = record.time;
    head.connection = record.connection;
    head.socket = record.socket;
    head.family = record.family;
    head.event = record.event;
    head.operation = record.operation;
    head.code = record.code;
    head.duration = record.duration;
    head.status = record.status;
    head.open = record.open;
    return head;
}

Json::Value Listed(const std::vector<Record>& records) {
    Json::Value list(Json::arrayValue);
    for (const Record& record : records) {
        Json::Value one(Json::objectValue);
        one["number"] = Count(record.number);
        one["operation"] = FullName(record);
        one["connection"] = Count(record.connection);
        record.time.AddTo(one);
        if (record.duration) one["duration_us"] = Count(*record.duration);
        if (record.status) one["status"] = *record.status;
        list.append(one);
    }
    return list;
}

std::string Row(const Record& record, const std::string& zone) {
    std::string text = "  " + TimeOfDay(record.time.Wall(), zone) + "  ";
    if (record.duration) text += DurationText(*record.duration) + "  ";
    text += FullName(record) + ", record " + std::to_string(record.number);
    if (record.status && *record.status != 0) text += ", status " + std::to_string(*record.status);
    return text + "\n";
}

}  // namespace

// Exact below kSteps; above, kSteps slots for each power of two.
size_t Durations::SlotOf(uint64_t microseconds) {
    if (microseconds < kSteps) return static_cast<size_t>(microseconds);
    int power = 0;
    while (microseconds >= 2 * kSteps) {
        microseconds >>= 1;
        ++power;
    }
    return std::min(kSteps * (static_cast<size_t>(power) + 1) + static_cast<size_t>(microseconds) - kSteps,
                    kSteps * kPowers - 1);
}

void Durations::Add(uint64_t microseconds) {
    const size_t slot = SlotOf(microseconds);
    if (mSlots.size() <= slot) mSlots.resize(slot + 1);
    ++mSlots[slot];
    ++mCount;
    mLongest = std::max(mLongest, microseconds);
}

uint64_t Durations::Percentile(double part) const {
    if (mCount == 0) return 0;
    const auto rank = std::max<uint64_t>(1, static_cast<uint64_t>(std::ceil(part * static_cast<double>(mCount))));
    uint64_t seen = 0;
    for (size_t slot = 0; slot < mSlots.size(); ++slot) {
        seen += mSlots[slot];
        if (seen < rank) continue;
        if (slot < kSteps) return slot;
        // The largest time of the slot.
        const size_t power = slot / kSteps - 1;
        return std::min(mLongest, (static_cast<uint64_t>(slot % kSteps + kSteps + 1) << power) - 1);
    }
    return mLongest;
}

void Statistics::AddSlow(const Record& record) {
    const auto slower = [](const Record& left, const Record& right) { return left.duration > right.duration; };
    if (mSlowest.size() == kSlowest && !slower(record, mSlowest.back())) return;
    mSlowest.insert(std::upper_bound(mSlowest.begin(), mSlowest.end(), record, slower), WithoutPayloads(record));
    if (mSlowest.size() > kSlowest) mSlowest.pop_back();
}

void Statistics::Add(const Record& record) {
    ++mKinds[static_cast<size_t>(record.kind)];
    if (mFirst == 0) mFirst = record.time.Wall();
    mLast = std::max(mLast, record.time.Wall());
    if (record.kind != Record::Kind::Exchange && record.kind != Record::Kind::Damaged) return;
    const bool error = IsError(record);
    const uint64_t bytes = BytesOf(record);
    mErrors += error ? 1 : 0;
    mBytes += bytes;
    if (record.kind != Record::Kind::Exchange) return;
    const std::string name = FullName(record);
    const bool full = mOperations.size() >= kMostOperations && mOperations.count(name) == 0;
    Operation& operation = mOperations[full ? "others" : name];
    if (operation.calls == 0 && !full) {
        operation.family = record.family.empty() ? record.socket : record.family;
        operation.name = name.substr(operation.family.size() + 1);
        operation.event = record.event;
    }
    ++operation.calls;
    operation.errors += error ? 1 : 0;
    operation.bytes += bytes;
    if (record.open) {
        ++mOpenCount;
        if (mOpen.size() < kMostOpen) mOpen.push_back(WithoutPayloads(record));
    } else if (record.duration) {
        operation.durations.Add(*record.duration);
        AddSlow(record);
    }
}

std::string Statistics::Text(const std::string& zone) const {
    const uint64_t exchanges = mKinds[static_cast<size_t>(Record::Kind::Exchange)];
    std::string text = Counted(exchanges, "exchange") + ", " + Counted(mErrors, "error") + ", " +
                       Counted(mBytes, "byte") + " in " + DurationText(mLast - mFirst) + "; " +
                       std::to_string(mOpenCount) + " open, " +
                       std::to_string(mKinds[static_cast<size_t>(Record::Kind::Damaged)]) + " damaged\n";
    if (!mOperations.empty()) text += "   calls  errors       bytes     p50 ms     p99 ms     max ms  operation\n";
    for (const auto& [name, operation] : mOperations) {
        const Durations& times = operation.durations;
        char row[160];
        const auto time = [&times](uint64_t value) { return times.Count() == 0 ? "-" : Milliseconds3(value); };
        std::snprintf(
            row, sizeof(row), "%8llu %7llu %11llu %10s %10s %10s  ", static_cast<unsigned long long>(operation.calls),
            static_cast<unsigned long long>(operation.errors), static_cast<unsigned long long>(operation.bytes),
            time(times.Percentile(0.5)).c_str(), time(times.Percentile(0.99)).c_str(), time(times.Longest()).c_str());
        text += row + std::string(operation.event ? "* " : "") + Printable(name) + "\n";
    }
    if (!mSlowest.empty()) text += "slowest\n";
    for (const Record& record : mSlowest) text += Printable(Row(record, zone), LineBreaks::Kept);
    if (!mOpen.empty()) text += "open\n";
    for (const Record& record : mOpen) text += Printable(Row(record, zone), LineBreaks::Kept);
    if (mOpenCount > mOpen.size()) text += "  and " + std::to_string(mOpenCount - mOpen.size()) + " more\n";
    return text;
}

Json::Value Statistics::Json(const Operation& operation) {
    Json::Value numbers(Json::objectValue);
    numbers["calls"] = Count(operation.calls);
    numbers["errors"] = Count(operation.errors);
    numbers["bytes"] = Count(operation.bytes);
    if (operation.durations.Count() == 0) return numbers;
    numbers["p50_us"] = Count(operation.durations.Percentile(0.5));
    numbers["p99_us"] = Count(operation.durations.Percentile(0.99));
    numbers["max_us"] = Count(operation.durations.Longest());
    return numbers;
}

Json::Value Statistics::Json() const {
    Json::Value document(Json::objectValue);
    Json::Value& records = document["records"] = Json::Value(Json::objectValue);
    for (size_t i = 0; i < mKinds.size(); ++i) records[NameOf(static_cast<Record::Kind>(i))] = Count(mKinds[i]);
    document["errors"] = Count(mErrors);
    document["bytes"] = Count(mBytes);
    document["span_us"] = Count(mLast - mFirst);
    Json::Value& operations = document["operations"] = Json::Value(Json::arrayValue);
    for (const auto& [name, operation] : mOperations) {
        Json::Value one = Json(operation);
        one["operation"] = name;
        one["event"] = operation.event;
        operations.append(one);
    }
    document["slowest"] = Listed(mSlowest);
    document["open"] = Listed(mOpen);
    document["open_count"] = Count(mOpenCount);
    return document;
}

}  // namespace hbbtv::traffic
