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
inline double coneAttenuation(double innerCosine, double outerCosine, double cosine) {
    const double t = (cosine - outerCosine) / std::max(innerCosine - outerCosine, 1e-3);
    const double clamped = std::clamp(t, 0.0, 1.0);
    return clamped * clamped;
}

/// What a light's range, in scene units, leaves of it at a distance: 1 near it, 0 from the
/// range on. Formula: KHR_lights_punctual, without the inverse square.
inline double rangeAttenuation(float range, double distance) {
    if (!std::isfinite(range)) return 1.0;
    const double ratio = distance / static_cast<double>(range);
    return std::clamp(1.0 - ratio * ratio * ratio * ratio, 0.0, 1.0);
}

/// A point or spot light in plain numbers, as ResolvedLight and Light have them, so that
/// loops over many positions vectorise.
struct PunctualLight {
    explicit PunctualLight(const ResolvedLight& resolved)
        : position(resolved.light->position),
          direction(resolved.light->direction),
          innerCosine(resolved.light->innerCosine),
          outerCosine(resolved.light->outerCosine),
          range(resolved.light->range),
          scale(resolved.scale) {}

    Imath::V3d position;
    Imath::V3d direction;
    double innerCosine;
    double outerCosine;
    float range;
    double scale;
};

/// What it brings to a position, its colour apart: direction and distance as in LightSample.
struct PunctualSample {
    double x, y, z;
    double distance;
    double level;  ///< factor on the light's colour; dark unless above 0
};

/// `isSpot` and `hasFalloff` say what Light::kind and LightSet::falloff do.
template <bool isSpot, bool hasFalloff>
inline PunctualSample samplePunctual(const PunctualLight& light, double px, double py, double pz) {
    const double wx = px - light.position.x;
    const double wy = py - light.position.y;
    const double wz = pz - light.position.z;
    PunctualSample sample;
    sample.distance = std::sqrt(wx * wx + wy * wy + wz * wz);
    const bool isApart = sample.distance > 0;
    sample.x = isApart ? wx / sample.distance : light.direction.x;
    sample.y = isApart ? wy / sample.distance : light.direction.y;
    sample.z = isApart ? wz / sample.distance : light.direction.z;
    sample.level = 1;
    if constexpr (isSpot) {
        sample.level *=
            coneAttenuation(light.innerCosine, light.outerCosine,
                            sample.x * light.direction.x + sample.y * light.direction.y +
                                sample.z * light.direction.z);
    }
    if constexpr (hasFalloff) {
        sample.level *= rangeAttenuation(light.range, sample.distance) * light.scale /
                        std::max(sample.distance * sample.distance, 1e-12);
    }
    return sample;
}

inline PunctualSample samplePunctual(bool isSpot, bool hasFalloff, const PunctualLight& light,
                                     const Imath::V3d& p) {
    if (isSpot) {
        return hasFalloff ? samplePunctual<true, true>(light, p.x, p.y, p.z)
                          : samplePunctual<true, false>(light, p.x, p.y, p.z);
    }
    return hasFalloff ? samplePunctual<false, true>(light, p.x, p.y, p.z)
                      : samplePunctual<false, false>(light, p.x, p.y, p.z);
}

/// The light at `position`; nothing where its cone or range leaves that dark. Any thread.
inline std::optional<LightSample> sampleLight(const LightSet& lights, const ResolvedLight& resolved,
                                              const Imath::V3d& position) {
    const Light& light = *resolved.light;
    if (light.kind == LightKind::Directional) {
        return LightSample{light.direction, resolved.color,
                           std::numeric_limits<double>::infinity()};
    }
    const PunctualSample sample = samplePunctual(light.kind == LightKind::Spot, lights.falloff,
                                                 PunctualLight(resolved), position);
    if (!(sample.level > 0)) return std::nullopt;
    return LightSample{
        {sample.x, sample.y, sample.z}, resolved.color * sample.level, sample.distance};
}

}  // namespace tavora::studio
