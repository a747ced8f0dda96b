#pragma once

#include <ImathVec.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "studio/scene/lighting/light_set.h"

namespace tavora::studio {

/// What a light brings to a position in the world when nothing is in its way.
struct LightSample {
    Imath::V3d direction{0, 0, -1};  ///< unit, in which the light travels
    Imath::V3d color{0, 0, 0};       ///< display-referred
    double distance = 0;             ///< scene units to the light; infinite for a directional one
};

/// The fraction of a spot light's candela that goes in a direction whose cosine with the
/// light's own is `cosine`: 1 inside the inner cone, falling to 0 at the outer one. Formula:
/// KHR_lights_punctual, with at least 0.001 between the cosines.
inline double coneAttenuation(const Light& light, double cosine) {
    const double t =
        (cosine - light.outerCosine) / std::max(light.innerCosine - light.outerCosine, 1e-3);
    const double clamped = std::clamp(t, 0.0, 1.0);
    return clamped * clamped;
}

/// What a light's range leaves of it at a distance: 1 near it, 0 from the range on. Formula:
/// KHR_lights_punctual, without the inverse square.
inline double rangeAttenuation(const Light& light, double distance) {
    if (!std::isfinite(light.range)) return 1.0;
    const double ratio = distance / static_cast<double>(light.range);
    return std::clamp(1.0 - ratio * ratio * ratio * ratio, 0.0, 1.0);
}

/// The light at `position`; nothing where its cone or range leaves that dark. Any thread.
inline std::optional<LightSample> sampleLight(const LightSet& lights, const ResolvedLight& resolved,
                                              const Imath::V3d& position) {
    const Light& light = *resolved.light;
    LightSample sample;
    sample.color = resolved.color;
    if (light.kind == LightKind::Directional) {
        sample.direction = light.direction;
        sample.distance = std::numeric_limits<double>::infinity();
        return sample;
    }
    const Imath::V3d offset = position - light.position;
    sample.distance = std::sqrt(offset.length2());
    sample.direction = sample.distance > 0 ? offset / sample.distance : light.direction;
    double attenuation = 1;
    if (light.kind == LightKind::Spot)
        attenuation *= coneAttenuation(light, sample.direction.dot(light.direction));
    if (lights.falloff) {
        attenuation *= rangeAttenuation(light, sample.distance) * resolved.scale /
                       std::max(sample.distance * sample.distance, 1e-12);
    }
    if (!(attenuation > 0)) return std::nullopt;
    sample.color *= attenuation;
    return sample;
}

}  // namespace tavora::studio
