#include "protocol_file.h"

#include "wire/protocol.h"

namespace hbbtv::test {

Json::Value ReadProtocolFile(const std::string& family) {
    return FindFamily(family).protocol;
}

}  // namespace hbbtv::test
