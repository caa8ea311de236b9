// Which components of the tuned service are presented: at most one of each type.
#pragma once

#include <array>
#include <memory>

#include "platform/tv.h"

namespace hbbtv::sim {

class ComponentSelection {
  public:
    // The usual ones of a service: its first picture, its first sound without audio description, no subtitles.
    void Start(std::shared_ptr<const Service> service);
    void Clear();

    ComponentList All() const;
    ComponentList All(ComponentType type) const;

    // In the order picture, sound, subtitles.
    ComponentList Active() const;
    ComponentList Active(ComponentType type) const;

    // The component of the service that is meant: itself, or, for one that a client made, the first that fits its
    // description. Null when the service has none.
    std::shared_ptr<Component> Resolve(const std::shared_ptr<Component>& wanted) const;

    std::shared_ptr<Component> Usual(ComponentType type) const;

    // Whether something changed.
    bool Select(const std::shared_ptr<Component>& component);
    bool Unselect(ComponentType type);

  private:
    std::shared_ptr<const Service> mService;
    std::array<std::shared_ptr<Component>, 3> mActive;
};

}  // namespace hbbtv::sim
