#include "studio/scene/light_levels.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "studio/scene/color.h"
#include "studio/scene/default_view.h"
#include "studio/scene/glob.h"
#include "studio/scene/soft_light.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kNearest = 0.05;   // of the scene's size: lights no nearer to its centre
constexpr double kMostLevel = 1e6;  // what a fixed exposure can make of a light

double sizeOf(const Scene& scene) {
    return scene.bounds.isEmpty() ? 1.0 : std::max(scene.bounds.size().length(), 1e-30);
}

V3d centreOf(const Scene& scene) {
    return scene.bounds.isEmpty() ? V3d(0) : scene.bounds.center();
}

/// Squared distance at which a light's level is taken.
double levelDistance2(const Light& light, const Scene& scene) {
    const double nearest = kNearest * sizeOf(scene);
    return std::max((light.position - centreOf(scene)).length2(), nearest * nearest);
}

/// Physical strength at the centre of the scene, for the brightest channel.
double strengthAtCentre(const Light& light, const Scene& scene) {
    const double peak = std::max({light.color.x, light.color.y, light.color.z, 0.0F});
    const double strength = std::max(0.0, static_cast<double>(light.intensity)) * peak;
    return light.kind == LightKind::Directional ? strength
                                                : strength / levelDistance2(light, scene);
}

/// The light's hue, display-referred, its brightest channel 1.
V3d hueOf(const Light& light) {
    const V3d color(std::max(light.color.x, 0.0F), std::max(light.color.y, 0.0F),
                    std::max(light.color.z, 0.0F));
    const double peak = std::max({color.x, color.y, color.z});
    if (!(peak > 0)) return V3d(0);
    return V3d(toEncoded(color.x / peak), toEncoded(color.y / peak), toEncoded(color.z / peak));
}

LitLight settle(const Light& light, const Scene& scene, double unit) {
    LitLight lit;
    lit.light = &light;
    lit.color = hueOf(light) * std::clamp(strengthAtCentre(light, scene) / unit, 0.0, kMostLevel);
    lit.scale = light.kind == LightKind::Directional ? 1.0 : levelDistance2(light, scene);
    return lit;
}

/// The size of the last choice for the light, else its own.
double sizeOf(const Light& light, double own, const std::vector<LightSize>& choices) {
    for (const LightSize& choice : choices) {
        if (matchesName(choice.lights, light.name)) own = choice.size;
    }
    return own;
}

std::vector<V3d> pointsOf(const Light& light, const LightingOptions& options) {
    return light.kind == LightKind::Directional
               ? softSunPoints(light, sizeOf(light, light.angle, options.angles))
               : softLampPoints(light, sizeOf(light, light.radius, options.radii));
}

bool castsShadow(const Light& light, const LightingOptions& options) {
    const auto& without = options.withoutShadows;
    return light.castsShadow &&
           std::none_of(without.begin(), without.end(),
                        [&](const std::string& lights) { return matchesName(lights, light.name); });
}

/// The strength that counts as 1: that of the brightest light.
double brightest(const std::vector<const Light*>& lights, const Scene& scene) {
    double most = 0;
    for (const Light* light : lights)
        most = std::max(most, strengthAtCentre(*light, scene));
    return most > 0 ? most : 1.0;
}

/// 1 inside the inner cone, falling to 0 at the outer one.
double coneShare(const Light& light, double cosine) {
    const double t =
        (cosine - light.outerCosine) / std::max(light.innerCosine - light.outerCosine, 1e-3);
    const double clamped = std::clamp(t, 0.0, 1.0);
    return clamped * clamped;
}

/// Fades a light out towards its range.
double rangeWindow(const Light& light, double distance) {
    if (!std::isfinite(light.range)) return 1.0;
    const double ratio = distance / static_cast<double>(light.range);
    return std::clamp(1.0 - ratio * ratio * ratio * ratio, 0.0, 1.0);
}

}  // namespace

LightRig settleLights(const Scene& scene, const Camera& camera, const LightingOptions& options) {
    LightRig rig;
    rig.falloff = options.falloff;
    std::vector<const Light*> lights;
    for (const auto& light : scene.lights)
        lights.push_back(light.get());
    double defaultAmbient = 0;
    if (lights.empty()) {
        rig.own.push_back(std::make_unique<const Light>(keyLight(camera)));
        lights.push_back(rig.own.back().get());
        defaultAmbient = kDefaultAmbient;
    }
    const double unit = options.exposure ? 1.0 / *options.exposure : brightest(lights, scene);
    for (const Light* light : lights) {
        rig.lights.push_back(settle(*light, scene, unit));
        rig.lights.back().points = pointsOf(*light, options);
        rig.lights.back().castsShadow = castsShadow(*light, options);
    }
    rig.ambient = options.ambient.value_or(scene.ambient.value_or(V3d(defaultAmbient)));
    return rig;
}

double arrivingLight(const LightRig& rig, const LitLight& lit, const V3d& position, V3d& direction,
                     V3d& color) {
    const Light& light = *lit.light;
    color = lit.color;
    if (light.kind == LightKind::Directional) {
        direction = light.direction;
        return std::numeric_limits<double>::infinity();
    }
    const V3d way = position - light.position;
    const double distance = std::sqrt(way.length2());
    direction = distance > 0 ? way / distance : light.direction;
    double level = 1;
    if (light.kind == LightKind::Spot) level *= coneShare(light, direction.dot(light.direction));
    if (rig.falloff) {
        level *= rangeWindow(light, distance) * lit.scale / std::max(distance * distance, 1e-12);
    }
    if (!(level > 0)) return -1;
    color *= level;
    return distance;
}

}  // namespace tavora::studio
