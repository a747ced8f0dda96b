#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// Settings of the shader that imitate an avatar's shading.
struct ToonZones {
    nlohmann::ordered_json settings;   ///< for applySettings()
    std::vector<std::string> inexact;  ///< where they are only near it, a phrase each
};

/// Computes the zones for a surface of `scene` that has a ToonShade. Zone positions are the
/// sum of the lights' cosines, without ambient light, as in the formula of ToonShade. Zones
/// start at 0, so everything that faces away from the light has one colour. Any thread.
ToonZones toonZones(const Scene& scene, const Surface& surface);

}  // namespace tavora::studio
