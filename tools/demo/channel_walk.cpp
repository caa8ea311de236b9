#include "channel_walk.h"

#include <vantorel/hardware/hbbtv/1.0/IChannel.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelConfig.h>
#include <vantorel/hardware/hbbtv/1.0/IChannelList.h>

#include <chrono>
#include <cstdio>
#include <vector>

namespace hbbtv::demo {

namespace {

using android::sp;
using android::hardware::hidl_string;
using android::hardware::Return;
using vantorel::hardware::hbbtv::V1_0::IChannel;
using vantorel::hardware::hbbtv::V1_0::IChannelConfig;
using vantorel::hardware::hbbtv::V1_0::IChannelList;
using vantorel::hardware::hbbtv::V1_0::TolmChannelType;

// One row of the table.
struct Row {
    int32_t number = 0;
    std::string name;
    TolmChannelType type = TolmChannelType::TV;
    int32_t onid = 0, tsid = 0, sid = 0;
    bool favourite = false, locked = false, hidden = false;
};

// A name may be of any length and hold anything: so many characters of it, and dots for those that would do something.
std::string Cell(const std::string& name) {
    constexpr size_t kWidth = 26;
    constexpr size_t kMostCharacters = 60;
    constexpr size_t kMostBytes = 4 * kMostCharacters;
    std::string cell;
    size_t characters = 0;
    for (size_t at = 0; at < name.size() && cell.size() < kMostBytes; ++at) {
        const auto byte = static_cast<unsigned char>(name[at]);
        const bool continues = (byte & 0xc0) == 0x80;
        if (!continues && ++characters > kMostCharacters) break;
        const bool upperControl =
            byte == 0xc2 && at + 1 < name.size() && static_cast<unsigned char>(name[at + 1]) < 0xa0;
        cell += byte < 0x20 || byte == 0x7f || upperControl ? '.' : name[at];
        if (upperControl) ++at;
    }
    if (characters < kWidth) cell.append(kWidth - characters, ' ');
    return cell;
}

class Walk {
  public:
    Walk(Transcript& transcript, Caller& caller, const std::function<void(int64_t, const std::string&)>& name)
        : mTranscript(transcript), mCaller(caller), mName(name) {}

    bool Run() {
        mTranscript.Step("Walk through the channel list");
        if (mConfig == nullptr || mLists == nullptr || mChannels == nullptr) {
            return mCaller.Expect(false, "IChannelConfig, IChannelList and IChannel");
        }
        int64_t list = 0;
        uint32_t length = 0;
        return mCaller.Get(
                   "GetChannelList", [&](auto cb) { return mConfig->GetChannelList(cb); },
                   [](int64_t) { return std::string("the list"); }, list) &&
               mCaller.Get(
                   "GetLength", [&](auto cb) { return mLists->GetLength(list, cb); },
                   [](uint32_t n) { return std::to_string(n) + " channels"; }, length) &&
               Table(list, length) && mCaller.Call("Release(the list)", [&] { return mLists->Release(list); });
    }

  private:
    bool Table(int64_t list, uint32_t length) {
        const auto begin = Transcript::Clock::now();
        std::vector<Row> rows;
        for (uint32_t i = 0; i < length; ++i) {
            int64_t channel = 0;
            if (!Ask(mLists->Item(list, static_cast<int32_t>(i), Into(channel)))) break;
            Row row;
            if (!Read(channel, row)) break;
            mName(channel, row.name);
            rows.push_back(row);
        }
        const std::chrono::duration<double, std::milli> took = Transcript::Clock::now() - begin;
        Show(rows, took.count());
        return mCaller.Expect(rows.size() == length, "every channel of the list");
    }

    bool Read(int64_t channel, Row& row) {
        hidl_string name;
        const bool ok =
            Ask(mChannels->GetMajorChannel(channel, Into(row.number))) &&
            Ask(mChannels->GetName(channel, Into(name))) && Ask(mChannels->GetChannelType(channel, Into(row.type))) &&
            Ask(mChannels->GetOnid(channel, Into(row.onid))) && Ask(mChannels->GetTsid(channel, Into(row.tsid))) &&
            Ask(mChannels->GetSid(channel, Into(row.sid))) &&
            Ask(mChannels->GetFavourite(channel, Into(row.favourite))) &&
            Ask(mChannels->GetLocked(channel, Into(row.locked))) &&
            Ask(mChannels->GetHidden(channel, Into(row.hidden)));
        row.name = name;
        return ok;
    }

    template <typename T>
    std::function<void(int32_t, const T&)> Into(T& value) {
        return [this, &value](int32_t status, const T& result) {
            mStatus = status;
            value = result;
        };
    }

    bool Ask(const Return<void>& returned) {
        ++mCalls;
        return returned.isOk() && mStatus == 0;
    }

    void Show(const std::vector<Row>& rows, double milliseconds) {
        std::string table = "      no  name                        type   onid  tsid   sid\n";
        for (const Row& row : rows) {
            char line[400];
            std::snprintf(line, sizeof(line), "    %4d  %s  %-5s %5d %5d %5d%s%s%s\n", row.number,
                          Cell(row.name).c_str(), toString(row.type).c_str(), row.onid, row.tsid, row.sid,
                          row.favourite ? "  favourite" : "", row.locked ? "  locked" : "",
                          row.hidden ? "  hidden" : "");
            table += line;
        }
        char summary[80];
        std::snprintf(summary, sizeof(summary), "    %d calls in %.1f ms\n", mCalls, milliseconds);
        mTranscript.Text(table + summary);
    }

    Transcript& mTranscript;
    Caller& mCaller;
    const std::function<void(int64_t, const std::string&)>& mName;
    const sp<IChannelConfig> mConfig = IChannelConfig::tryGetService();
    const sp<IChannelList> mLists = IChannelList::tryGetService();
    const sp<IChannel> mChannels = IChannel::tryGetService();
    int32_t mStatus = -1;
    int mCalls = 0;
};

}  // namespace

bool WalkChannels(Transcript& transcript, Caller& caller,
                  const std::function<void(int64_t, const std::string&)>& name) {
    return Walk(transcript, caller, name).Run();
}

}  // namespace hbbtv::demo
