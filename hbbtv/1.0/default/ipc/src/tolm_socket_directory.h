// The directory of the sockets: whether another user can take their names.
#pragma once

namespace tolm {

// Logs a warning if other users may replace files of the directory, and for each file with the name of one of this
// library's sockets that belongs to another user. For the start of the service; changes nothing.
void CheckSocketDirectory();

}  // namespace tolm
