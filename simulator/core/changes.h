// Notification of changes: a member of the data that changes, so that whoever changes it cannot forget to notify.
#pragma once

#include <functional>
#include <vector>

namespace hbbtv::sim {

template <typename... What>
class Changes {
  public:
    // The function is called at every change from now on, after those that were added before, for as long as the data
    // exists. It must not add functions.
    void Watch(std::function<void(What...)> function) { mFunctions.push_back(std::move(function)); }

    // For the data itself.
    void Notify(What... what) const {
        for (const auto& function : mFunctions) function(what...);
    }

  private:
    std::vector<std::function<void(What...)>> mFunctions;
};

}  // namespace hbbtv::sim
