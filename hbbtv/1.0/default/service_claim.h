// One service for a directory. On a host, any shell can start a second one, which would take the names and sockets of
// the first. On a television, init starts the service once, and nothing is checked.
#pragma once

// Returns whether this process is the only service in the directory of the sockets and in that of the HIDL names. If
// not, reports which process the other one is. The claim ends with the process, however it ends.
bool ClaimDirectories();
