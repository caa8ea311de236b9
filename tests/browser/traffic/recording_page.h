// A recording as a page in a file, for tests.
#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "traffic/web/page.h"

namespace hbbtv::test {

// Writes the records as a page and returns its address.
inline std::string WritePage(const std::string& file, const std::vector<traffic::Record>& records) {
    std::ofstream out(file, std::ios::binary);
    traffic::HtmlWriter writer({traffic::kRecordingVersion, "hbbtvctl 1.0.0", "/tmp/tv", "+01:00", TimeStamp(5, 6)},
                               [&out](const std::string& part) { out << part; });
    for (const traffic::Record& record : records) writer.Add(record);
    writer.Finish();
    return "file://" + file;
}

inline const char* const kAllAreShown = "page.loaded && page.view.taken === page.store.rows.length";

}  // namespace hbbtv::test
