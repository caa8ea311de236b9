// What a programme must be to be found: a property compared with a value, and And, Or and Not of such queries. A query
// never changes, so queries can share others, and none can be within itself.
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

    // How many comparisons and operators there are when it is written out.
    size_t Size() const { return mSize; }

  protected:
    // Throws Refused when that is too many.
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
