#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// An avatar's shading as settings of the shader.
struct ToonZones {
    nlohmann::ordered_json settings;   ///< for applySettings()
    std::vector<std::string> inexact;  ///< where they are but near it, a phrase each
};

/// Of a surface of `scene` that has a ToonShade. The zones run over the sum of the
/// lights' cosines without ambient light, which is what the border between the two
/// tones is told by; all that faces away from the light has one colour. Any thread.
ToonZones toonZones(const Scene& scene, const Surface& surface);

}  // namespace tavora::studio
