#pragma once

#include <cstdint>
#include <optional>

#include "studio/scene/lighting/light_set.h"
#include "studio/services/scene_index.h"

namespace tavora::studio {

/// As long as an object of this class exists, services called on its thread refer to its scene
/// and lights, which must outlive it. Bindings nest: its end restores the one before it.
class ServiceBinding {
  public:
    ServiceBinding(const SceneIndex& scene, const LightSet& lights);
    ~ServiceBinding();
    ServiceBinding(const ServiceBinding&) = delete;
    ServiceBinding& operator=(const ServiceBinding&) = delete;

    /// The binding of this thread, or null.
    static const ServiceBinding* current() { return bound; }

    const SceneIndex& scene() const { return *scene_; }
    const LightSet& lights() const { return *lights_; }

  private:
    inline static thread_local const ServiceBinding* bound = nullptr;

    const SceneIndex* scene_;
    const LightSet* lights_;
    const ServiceBinding* before_;
};

/// The identity of a light for modules: the address of its entry in the light set.
inline HostItemId itemId(const ResolvedLight& light) {
    return reinterpret_cast<HostItemId>(const_cast<ResolvedLight*>(&light));
}

/// The index of a light in `lights.lights`; empty when it is none of them.
inline std::optional<std::size_t> lightIndex(const LightSet& lights, HostItemId id) {
    const auto first = reinterpret_cast<std::uintptr_t>(lights.lights.data());
    const auto offset = reinterpret_cast<std::uintptr_t>(id) - first;  // wraps for others
    if (id == nullptr || offset % sizeof(ResolvedLight) != 0) return std::nullopt;
    const std::uintptr_t index = offset / sizeof(ResolvedLight);
    return index < lights.lights.size() ? std::optional<std::size_t>(index) : std::nullopt;
}

}  // namespace tavora::studio
