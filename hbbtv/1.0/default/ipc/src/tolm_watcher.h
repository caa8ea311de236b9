// Logs requests and events that take long: once each, after a second. One thread for the whole process, which sleeps
// while nothing is open.
#pragma once

namespace tolm {

class Watcher {
  public:
    // Something has been opened in an EndpointStatus. Starts the thread if necessary, and wakes it if it sleeps.
    // Thread-safe, and does not wait.
    static void Wake();

    // Returns whether the thread sleeps until Wake(), or was not started.
    static bool Sleeps();
};

}  // namespace tolm
