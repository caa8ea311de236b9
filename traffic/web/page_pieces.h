// The page of page/, compiled into the program by embed_page.py, cut where the program inserts something.
#pragma once

namespace hbbtv::traffic {

extern const char* const kBeforePolicy;  // a source of connect-src follows
extern const char* const kBeforeSettings;
extern const char* const kBeforeRecords;
extern const char* const kEnd;

}  // namespace hbbtv::traffic
