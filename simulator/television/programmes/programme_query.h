// A query: the comparison of a property with a value, or And, Or and Not of queries. Queries are immutable, so they can
// share others and cannot contain themselves.
#pragma once

#include <memory>
#include <string>

#include "television/programmes/programme.h"

namespace hbbtv::sim {

class ProgrammeQuery {
  public:
    using Shared = std::shared_ptr<ProgrammeQuery>;

    virtual ~ProgrammeQuery() = default;

    virtual bool Fits(const Programme& programme) const = 0;

    // The number of comparisons and operators when expanded.
    size_t Size() const { return mSize; }

  protected:
    // Throws Refused if that is too large.
    explicit ProgrammeQuery(size_t size);

  private:
    size_t mSize;
};

// `field` is "Programme." and the name of a property, `comparison` a value of OIPF DAE volume 5. Both throw Refused.
ProgrammeQuery::Shared Compare(const std::string& field, int comparison, const std::string& value);
ProgrammeQuery::Shared And(ProgrammeQuery::Shared first, ProgrammeQuery::Shared second);
ProgrammeQuery::Shared Or(ProgrammeQuery::Shared first, ProgrammeQuery::Shared second);
ProgrammeQuery::Shared Not(ProgrammeQuery::Shared query);

}  // namespace hbbtv::sim
