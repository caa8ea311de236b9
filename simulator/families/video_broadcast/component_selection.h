// Which components of the tuned service are presented: at most one of each type.
#pragma once

#include <array>
#include <memory>

#include "television/tv.h"

namespace hbbtv::sim {

class ComponentSelection {
  public:
    explicit ComponentSelection(const Preferences& preferences) : mPreferences(preferences) {}

    // Selects the default ones of a service; subtitles only if the viewer's preferences have them on.
    void Start(std::shared_ptr<const Service> service);
    void Clear();

    ComponentList All() const;
    ComponentList All(ComponentType type) const;

    // In the order video, audio, subtitles.
    ComponentList Active() const;
    ComponentList Active(ComponentType type) const;

    // Returns the component itself or, for one created by a client, the first that matches its description. Null if the
    // service has none.
    std::shared_ptr<Component> Resolve(const std::shared_ptr<Component>& wanted) const;

    // Returns the component chosen by the viewer's preferences of languages, audio description and subtitles for the
    // hearing impaired. Null if the service has none of the type, or only audio descriptions that are not preferred.
    std::shared_ptr<Component> Usual(ComponentType type) const;

    // Returns whether the selection has changed.
    bool Select(const std::shared_ptr<Component>& component);
    bool Unselect(ComponentType type);

  private:
    const Preferences& mPreferences;
    std::shared_ptr<const Service> mService;
    std::array<std::shared_ptr<Component>, 3> mActive;
};

}  // namespace hbbtv::sim
