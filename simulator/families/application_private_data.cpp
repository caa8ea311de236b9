// Information for an application about itself and the television.
#include "family/family_setup.h"

#include "family/members.h"

namespace hbbtv::sim {

namespace {

constexpr int kUnknown = -1;

class ApplicationPrivateDataFamily : public Family {
  public:
    explicit ApplicationPrivateDataFamily(const FamilySetup& setup);

  private:
    void GetFreeMem(In, Out out) { out["memSize"] = mTv.device.freeMemory.value_or(kUnknown); }
    void GetCurrentChannel(In, Out out) { out["channel"] = Text(mTv.channels, mTv.tuner.On()); }

    // At the television.
    std::string SetFreeMemory(const Words& words);

    Tv& mTv;
};

ApplicationPrivateDataFamily::ApplicationPrivateDataFamily(const FamilySetup& setup)
    : Family("application_private_data"), mTv(setup.tv) {
    using F = ApplicationPrivateDataFamily;
    Row("getFreeMem", &F::GetFreeMem);
    Row("getCurrentChannel", &F::GetCurrentChannel);
    AddCommand("free-memory BYTES|unknown", "set the memory that is free for applications", &F::SetFreeMemory);
}

std::string ApplicationPrivateDataFamily::SetFreeMemory(const Words& words) {
    const auto bytes = Number(Word(words), INT32_MAX);
    if (!bytes && Word(words) != "unknown") throw WrongWords();
    mTv.device.freeMemory = bytes;
    return "";
}

}  // namespace

std::unique_ptr<Family> MakeApplicationPrivateDataFamily(const FamilySetup& setup) {
    return std::make_unique<ApplicationPrivateDataFamily>(setup);
}

}  // namespace hbbtv::sim
