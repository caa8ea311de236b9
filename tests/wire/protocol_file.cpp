#include "protocol_file.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace hbbtv::test {

Json::Value ReadProtocolFile(const std::string& family) {
    const std::string path = PROTOCOL_DIRECTORY "/" + family + ".json";
    std::ifstream file(path);
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    Json::Value document;
    std::string errors;
    if (!Json::parseFromStream(builder, file, &document, &errors)) {
        std::fprintf(stderr, "%s: %s\n", path.c_str(), errors.c_str());
        std::abort();
    }
    return document;
}

}  // namespace hbbtv::test
