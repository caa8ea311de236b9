#include "family/family_setup.h"

#include "television/capabilities.h"

namespace hbbtv::sim {

namespace {

class CapabilitiesFamily : public Family {
  public:
    explicit CapabilitiesFamily(const FamilySetup& setup);

  private:
    void GetXmlCapabilities(In, Out out) { out["xml_capabilities"] = Capabilities(mTv).Xml(); }
    void GetExtraSDVideoDecodes(In, Out out) { out["amount_of_decodes"] = ExtraVideoDecodes(mTv, false); }
    void GetExtraHDVideoDecodes(In, Out out) { out["amount_of_decodes"] = ExtraVideoDecodes(mTv, true); }
    void HasCapability(In in, Out out) { out["available"] = Capabilities(mTv).Has(in.Int("capability_type")); }
    void GetTerminalCapability(In, Out out) { out["terminalCap"] = Capabilities(mTv).Profile(); }

    const Tv& mTv;
};

CapabilitiesFamily::CapabilitiesFamily(const FamilySetup& setup) : Family("capabilities"), mTv(setup.tv) {
    using F = CapabilitiesFamily;
    Row("GetXmlCapabilities", &F::GetXmlCapabilities);
    Row("GetExtraSDVideoDecodes", &F::GetExtraSDVideoDecodes);
    Row("GetExtraHDVideoDecodes", &F::GetExtraHDVideoDecodes);
    Row("HasCapability", &F::HasCapability);
    Row("GetTerminalCapability", &F::GetTerminalCapability);
}

}  // namespace

std::unique_ptr<Family> MakeCapabilitiesFamily(const FamilySetup& setup) {
    return std::make_unique<CapabilitiesFamily>(setup);
}

}  // namespace hbbtv::sim
