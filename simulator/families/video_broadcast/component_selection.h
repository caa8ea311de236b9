// Which components of the tuned service are presented: at most one of each type.
#pragma once

#include <array>
#include <memory>

#include "television/tv.h"

namespace hbbtv::sim {

class ComponentSelection {
  public:
    explicit ComponentSelection(const Preferences& preferences) : mPreferences(preferences) {}

    // The usual ones of a service; subtitles only when the viewer wants them.
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

    // The one that the viewer's preferences of languages, audio description and subtitles for the hearing impaired
    // choose. Null when the service has none of the type, and when it has only sound that describes, which nobody wants
    // unasked.
    std::shared_ptr<Component> Usual(ComponentType type) const;

    // Whether something changed.
    bool Select(const std::shared_ptr<Component>& component);
    bool Unselect(ComponentType type);

  private:
    const Preferences& mPreferences;
    std::shared_ptr<const Service> mService;
    std::array<std::shared_ptr<Component>, 3> mActive;
};

}  // namespace hbbtv::sim
