#pragma once

#include <string>
#include <vector>

#include "studio/scene/lighting/light_set.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// The camera whose name, or else index, is `choice`. When that is empty, the scene's first
/// camera, or one that frames the scene in a picture of width / height = `aspect`. Throws
/// Error, Fault::Usage, with similar names, when there is no such camera.
Camera chooseCamera(const Scene& scene, const std::string& choice, double aspect);

/// resolveLights(), after checks that throw Error, Fault::Usage, with similar names: every
/// name in the options must match a light, and in sizes a light of the right kind.
LightSet lightsFor(const Scene& scene, const Camera& keyView, const LightingOptions& options,
                   const LightMeter& meter);

/// The names of the lights with which the scene is rendered, in order: its own, or the key
/// light's if it has none.
std::vector<std::string> lightNames(const Scene& scene);

}  // namespace tavora::studio
