// What the service process reports about itself: to the log, which a television keeps, and to the stream that a shell
// shows.
#pragma once

// Writes a line to the log under the tag "hbbtv_service", and to standard output, or to standard error from
// ANDROID_LOG_WARN on.
void Report(int priority, const char* format, ...) __attribute__((format(printf, 2, 3)));
