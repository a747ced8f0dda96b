#pragma once

#include <string>
#include <vector>

#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// The camera that `choice` names (name, else index; empty: the first, or one
/// that frames the scene when it has none). Throws Error, Fault::Usage that lists the
/// near names.
Camera chooseCamera(const Scene& scene, const std::string& choice, double aspect);

/// resolveLights(). Throws Error, Fault::Usage for a size whose name matches no light of
/// its kind, and lists the near names.
LightSet lightsFor(const Scene& scene, const Camera& keyView, const LightingOptions& options,
                   const LightMeter& meter);

/// Names of the lights of a render of the scene, in order: its own, or that of the
/// key light where it has none.
std::vector<std::string> lightNames(const Scene& scene);

}  // namespace tavora::studio
