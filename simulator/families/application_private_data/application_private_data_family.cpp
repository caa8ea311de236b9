// Requests of the application private data family: see application_private_data_family.h.
#include "families/application_private_data/application_private_data_family.h"

#include "families/members.h"
#include "platform/line_up_text.h"

namespace hbbtv::sim {

namespace {

constexpr int kUnknown = -1;

class ApplicationPrivateDataFamily : public Family {
  public:
    explicit ApplicationPrivateDataFamily(const FamilySetup& setup);

  private:
    using In = const Arguments&;
    using Out = Json::Value&;

    void GetFreeMem(In, Out out) { out["memSize"] = mTv.device.freeMemory.value_or(kUnknown); }
    void GetCurrentChannel(In, Out out) { out["channel"] = Text(mTv.channels, mTv.tuner.On()); }

    // At the television.
    std::string SetFreeMemory(const std::vector<std::string>& words);

    Tv& mTv;
};

ApplicationPrivateDataFamily::ApplicationPrivateDataFamily(const FamilySetup& setup)
    : Family({"application_private_data", "service_plugin_to_hbbtv_app_priv", "", 17, "method", 8}), mTv(setup.tv) {
    using F = ApplicationPrivateDataFamily;
    Row(0, "getFreeMem", &F::GetFreeMem);
    Row(1, "getCurrentChannel", &F::GetCurrentChannel);
    AddCommand("free-memory", {"free-memory BYTES|unknown", "so much memory is free for applications",
                               [this](const auto& words) { return SetFreeMemory(words); }});
}

std::string ApplicationPrivateDataFamily::SetFreeMemory(const std::vector<std::string>& words) {
    const std::string word = Word(words);
    const auto bytes = ReadNumber(word, 10, INT32_MAX);
    if (!bytes && word != "unknown") throw Refused("usage: free-memory BYTES|unknown");
    mTv.device.freeMemory.reset();
    if (bytes) mTv.device.freeMemory = static_cast<int>(*bytes);
    return "";
}

}  // namespace

std::unique_ptr<Family> MakeApplicationPrivateDataFamily(const FamilySetup& setup) {
    return std::make_unique<ApplicationPrivateDataFamily>(setup);
}

}  // namespace hbbtv::sim
