// The implementation library of the tests: a workshop as instance "passthrough".
#include <cstring>

#include "workshop.h"

extern "C" ::vantorel::test::V1_0::IWorkshop* HIDL_FETCH_IWorkshop(const char* name);

::vantorel::test::V1_0::IWorkshop* HIDL_FETCH_IWorkshop(const char* name) {
    return std::strcmp(name, "passthrough") == 0 ? new hbbtv::test::Workshop : nullptr;
}
