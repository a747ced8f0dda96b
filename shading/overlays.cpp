#include "shading/overlays.h"

#include "shading/vector_math.h"

namespace tavora {
namespace {

/// A colour with its opacity.
struct Tint {
    double color[3];
    double opacity;
};

/// 0 for a normal straight down, 0.5 for a wall, 1 straight up.
double slopeOf(const HostSample& sample) {
    constexpr double up[3] = {0.0, 1.0, 0.0};
    return 0.5 * ddot(up, sample.worldNormal) + 0.5;
}

void paintStep(const float tint[3], float opacity, HostSample& sample) {
    for (int i = 0; i < 3; ++i) {
        sample.color[i] = static_cast<double>(1.0f - opacity) * sample.color[i] +
                          static_cast<double>(opacity * tint[i]);
    }
}

/// From the mean of `color` and `other` (weight 0) to `color` itself (weight 1).
Tint fromMean(const float color[3], const float other[3], float opacity, float otherOpacity,
              double weight) {
    Tint tint{};
    for (int i = 0; i < 3; ++i) {
        tint.color[i] = 0.5 * static_cast<double>(color[i] + other[i]) * (1.0 - weight) +
                        static_cast<double>(color[i]) * weight;
    }
    tint.opacity = 0.5 * static_cast<double>(opacity + otherOpacity) * (1.0 - weight) +
                   static_cast<double>(opacity) * weight;
    return tint;
}

/// From `color` itself (weight 0) to the mean of it and `other` (weight 1).
Tint towardsMean(const float color[3], const float other[3], float opacity, float otherOpacity,
                 double weight) {
    Tint tint{};
    for (int i = 0; i < 3; ++i) {
        tint.color[i] = static_cast<double>(color[i]) * (1.0 - weight) +
                        0.5 * static_cast<double>(color[i] + other[i]) * weight;
    }
    tint.opacity = static_cast<double>(opacity) * (1.0 - weight) +
                   0.5 * static_cast<double>(opacity + otherOpacity) * weight;
    return tint;
}

/// Bottom colour at slope 0, the mean of both at the centre, top colour at 1.
Tint mixedTint(const ShaderInstance& settings, double slope) {
    const auto center = static_cast<double>(settings.slopeCenter);
    if (slope >= center) {
        return fromMean(settings.slopeTopColor, settings.slopeBottomColor, settings.slopeTopOpacity,
                        settings.slopeBottomOpacity, smoothstep(center, 1.0, slope));
    }
    return towardsMean(settings.slopeBottomColor, settings.slopeTopColor,
                       settings.slopeBottomOpacity, settings.slopeTopOpacity,
                       smoothstep(0.0, center, slope));
}

/// How much of the colour stays: 0 in the edge band, 1 beyond its soft border.
double edgeWeight(const ShaderInstance& settings, double viewCosine) {
    const float coverage = settings.edgeCoverage;
    const float end = coverage + (1.0f - coverage) * (1.0f - settings.edgeSharpness);
    return smoothstep(static_cast<double>(coverage), static_cast<double>(end), viewCosine);
}

}  // namespace

void applySlope(const ShaderInstance& settings, HostSample& sample) {
    const double slope = slopeOf(sample);
    if (settings.slopeStyle == 1) {
        const bool top = slope >= static_cast<double>(settings.slopeCenter);
        paintStep(top ? settings.slopeTopColor : settings.slopeBottomColor,
                  top ? settings.slopeTopOpacity : settings.slopeBottomOpacity, sample);
        return;
    }
    const Tint tint = mixedTint(settings, slope);
    for (int i = 0; i < 3; ++i) {
        sample.color[i] = (1.0 - tint.opacity) * sample.color[i] + tint.opacity * tint.color[i];
    }
}

void applyEdge(const ShaderInstance& settings, HostSample& sample) {
    const double keep = edgeWeight(settings, sample.cosine);
    for (int i = 0; i < 3; ++i) {
        sample.color[i] =
            keep * sample.color[i] + (1.0 - keep) * static_cast<double>(settings.edgeColor[i]);
    }
}

}  // namespace tavora
