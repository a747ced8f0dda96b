#pragma once

#include <string>
#include <vector>

#include "studio/scene/light_levels.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// The camera that `choice` names (name, else index; empty: the first, or one
/// that frames the scene when it has none). Throws UsageError that lists the
/// near names.
Camera chooseCamera(const Scene& scene, const std::string& choice, double aspect);

/// Names of the lights of a render, in order.
std::vector<std::string> lightNames(const LightRig& rig);

}  // namespace tavora::studio
