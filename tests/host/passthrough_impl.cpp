// The implementation library of the tests: a workshop and a detour as instance "passthrough".
#include <cstring>

#include "detour.h"
#include "workshop.h"

extern "C" ::vantorel::test::V1_0::IWorkshop* HIDL_FETCH_IWorkshop(const char* name);
extern "C" hbbtv::test::IDetour* HIDL_FETCH_IDetour(const char* name);

::vantorel::test::V1_0::IWorkshop* HIDL_FETCH_IWorkshop(const char* name) {
    return std::strcmp(name, "passthrough") == 0 ? new hbbtv::test::Workshop : nullptr;
}

hbbtv::test::IDetour* HIDL_FETCH_IDetour(const char* name) {
    return std::strcmp(name, "passthrough") == 0 ? new hbbtv::test::IDetour : nullptr;
}
