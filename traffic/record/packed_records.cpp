#include "traffic/record/packed_records.h"

#include "common/text/json.h"

namespace hbbtv::traffic {

void PackedRecords::Add(const Record& record) {
    mLines.push_back(WriteJson(ToJson(record)));
    mLines.back().shrink_to_fit();
}

Record PackedRecords::At(size_t place) const {
    return mReader->Read(mLines[place]);
}

}  // namespace hbbtv::traffic
