// A guide whose programmes are all known from the start.
#pragma once

#include <unordered_map>

#include "television/programmes/guide.h"

namespace hbbtv::sim {

class ListedGuide : public Guide {
  public:
    // Sorted by time and without overlap; called once per service.
    void Add(const Service& service, ProgrammeList programmes);

    size_t Size() const { return mSize; }

    void Walk(const std::shared_ptr<const Service>& service, TimeRange range, const Visitor& visit) override;
    TimeRange Known(std::time_t) const override { return mKnown; }

  private:
    std::unordered_map<const Service*, ProgrammeList> mProgrammes;
    TimeRange mKnown;
    size_t mSize = 0;
};

}  // namespace hbbtv::sim
