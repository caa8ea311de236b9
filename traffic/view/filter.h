// Filters of records, as people type them: "family:channel & !op:GetName & ms>5".
#pragma once

#include <memory>
#include <string>

#include "traffic/record/record.h"

namespace hbbtv::traffic {

struct FilterNode;

// Words are combined by "&" (or nothing), "|", "!" and parentheses; "!" binds most, "|" least. A word is a field with a
// value, a kind of record such as "event", or text, quoted or not, that the record contains.
// Case does not matter. A comparison with what a record does not have, such as the status of a record without a reply,
// does not hold.
class Filter {
  public:
    // An empty text matches every record. Throws Failure(kUsage) with the position of what is wrong.
    explicit Filter(const std::string& text = "");

    bool Matches(const Record& record) const;

    // Returns whether the filter looks into payloads. If not, it also works on records without them.
    bool NeedsPayloads() const;

  private:
    std::shared_ptr<const FilterNode> mRoot;  // null: all
};

// Returns how a filter is written, with all fields and words, as a part of --help.
std::string FilterHelp();

}  // namespace hbbtv::traffic
