// The runtime's log lines (ALOGE, ALOGW). Names come from other processes: control characters and invalid UTF-8 in a
// line are escaped, so that it can neither look like further lines nor control a terminal.
#pragma once

#include <log/log.h>

#undef LOG_TAG
#define LOG_TAG "hidl_host"
#undef LOG_PRI
#define LOG_PRI(priority, tag, ...) ::android::hardware::host::Log(priority, tag, __VA_ARGS__)

namespace android::hardware::host {

int Log(int priority, const char* tag, const char* format, ...) __attribute__((format(printf, 3, 4)));

}  // namespace android::hardware::host
