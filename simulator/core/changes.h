// Notification of changes: a member of the data that changes, so that notifying cannot be forgotten.
#pragma once

#include <functional>
#include <vector>

namespace hbbtv::sim {

template <typename... What>
class Changes {
  public:
    // Calls the function on every later change, after those added before it, as long as the data exists. The function
    // must not add functions.
    void Watch(std::function<void(What...)> function) { mFunctions.push_back(std::move(function)); }

    // Called by the data itself.
    void Notify(What... what) const {
        for (const auto& function : mFunctions) function(what...);
    }

  private:
    std::vector<std::function<void(What...)>> mFunctions;
};

}  // namespace hbbtv::sim
