#include "studio/scene/lighting/light_set.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "studio/scene/framing/default_view.h"
#include "studio/scene/lighting/area_light.h"
#include "studio/scene/lighting/light_strength.h"
#include "studio/util/color.h"
#include "studio/util/glob.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kNearest = 0.05;    // of the scene's size: lights no nearer to its centre
constexpr double kMostLevel = 1e6;   // what a fixed exposure can make of a light
constexpr double kLeastCone = 0.05;  // of its light that an even spot must send to what it reaches

bool isLamp(const Light& light) {
    return light.kind != LightKind::Directional;
}

/// Squared distance to the centre of the scene, for a lamp that lights no surface.
double centreDistance2(const Light& lamp, const Scene& scene) {
    const bool empty = scene.bounds.isEmpty();
    const double size = empty ? 1.0 : std::max(scene.bounds.size().length(), 1e-30);
    const V3d centre = empty ? V3d(0) : scene.bounds.center();
    return std::max((lamp.position - centre).length2(), kNearest * kNearest * size * size);
}

/// The light's hue, display-referred, its brightest channel 1.
V3d hueOf(const Light& light) {
    const V3d color(std::max(light.color.x, 0.0F), std::max(light.color.y, 0.0F),
                    std::max(light.color.z, 0.0F));
    const double peak = std::max({color.x, color.y, color.z});
    if (!(peak > 0)) return V3d(0);
    return V3d(toEncoded(color.x / peak), toEncoded(color.y / peak), toEncoded(color.z / peak));
}

/// The strengths that count as 1: a sun's, a lamp's.
struct Units {
    double sun = 0;
    double lamp = 0;
};

/// Suns are measured by the brightest sun, which so keeps its level whatever
/// lamps there are; lamps by the brightest light of all.
Units brightest(const std::vector<LightStrength>& strengths) {
    Units units;
    double unreached = 0;
    for (const LightStrength& strength : strengths) {
        double& most = strength.sun ? units.sun : strength.reaches ? units.lamp : unreached;
        most = std::max(most, strength.value);
    }
    units.lamp = std::max(units.lamp, units.sun);
    if (!(units.lamp > 0)) units.lamp = unreached > 0 ? unreached : 1.0;
    if (!(units.sun > 0)) units.sun = 1.0;
    return units;
}

ResolvedLight resolve(const Light& light, const LightStrength& strength, const Units& units,
                      const LightingOptions& options) {
    ResolvedLight lit;
    lit.light = &light;
    const double one =
        options.exposure ? 1.0 / *options.exposure : (isLamp(light) ? units.lamp : units.sun);
    double level = strength.value / one;
    if (options.falloff) {
        if (isLamp(light) && strength.value > 0) lit.scale = peakIntensity(light) / strength.value;
    } else {
        if (!options.exposure) level = std::min(level, 1.0);
        level /= std::max(strength.cone, kLeastCone);
    }
    lit.color = hueOf(light) * std::clamp(level, 0.0, kMostLevel);
    return lit;
}

/// Whether some light is there that a single sun is not.
bool wantsAmbient(const std::vector<LightStrength>& strengths) {
    const auto shines = [](const LightStrength& strength) { return strength.value > 0; };
    const auto lampShines = [](const LightStrength& s) { return !s.sun && s.value > 0; };
    return std::count_if(strengths.begin(), strengths.end(), shines) > 1 ||
           std::any_of(strengths.begin(), strengths.end(), lampShines);
}

/// The size of the last choice for the light, else its own.
double sizeOf(const Light& light, double own, const std::vector<LightSize>& choices) {
    for (const LightSize& choice : choices) {
        if (matchesName(choice.lights, light.name)) own = choice.size;
    }
    return own;
}

std::vector<V3d> pointsOf(const Light& light, const LightingOptions& options) {
    return isLamp(light)
               ? punctualLightPoints(light, sizeOf(light, light.radius, options.radii))
               : directionalLightPoints(light, sizeOf(light, light.angle, options.angles));
}

bool castsShadow(const Light& light, const LightingOptions& options) {
    const auto& without = options.withoutShadows;
    return light.castsShadow &&
           std::none_of(without.begin(), without.end(),
                        [&](const std::string& lights) { return matchesName(lights, light.name); });
}

/// The strength that goes with another intensity than the one it was measured with.
LightStrength atIntensity(LightStrength strength, double measured, double intensity) {
    if (measured != intensity) strength.value *= measured > 0 ? intensity / measured : 0;
    return strength;
}

}  // namespace

void LightMeter::measure(const Scene& scene) {
    const auto isLampAt = [](const auto& light) { return isLamp(*light); };
    std::vector<SurfaceSample> points;
    if (std::any_of(scene.lights.begin(), scene.lights.end(), isLampAt))
        points = surfaceSamples(scene);
    for (const auto& light : scene.lights) {
        Measured now;
        now.intensity = now.most = now.strength.value = peakIntensity(*light);
        if (isLamp(*light)) {
            LightStrength& strength = now.strength;
            const LampReach reach = lampReach(*light, points);
            strength.sun = false;
            strength.reaches = reach.strength > 0;
            strength.cone = reach.cone;
            strength.value =
                strength.reaches ? reach.strength : strength.value / centreDistance2(*light, scene);
        }
        const auto [known, isNew] = lights_.try_emplace(light->name, now);
        if (isNew) continue;
        Measured& best = known->second;
        const double most = std::max(best.most, now.most);
        // By what a unit of intensity brings.
        const bool isBetter =
            std::make_pair(now.strength.reaches, now.strength.value * best.intensity) >
            std::make_pair(best.strength.reaches, best.strength.value * now.intensity);
        if (now.intensity > 0 && (isBetter || !(best.intensity > 0))) best = now;
        best.most = most;
    }
}

std::vector<LightStrength> LightMeter::strengthsOf(const Scene& scene) const {
    std::vector<LightStrength> strengths;
    for (const auto& light : scene.lights) {
        const auto known = lights_.find(light->name);
        const double intensity = peakIntensity(*light);
        if (known == lights_.end()) {  // never shown when it was measured
            strengths.push_back({intensity, !isLamp(*light), !isLamp(*light), 1});
        } else {
            const Measured& measured = known->second;
            strengths.push_back(atIntensity(measured.strength, measured.intensity, intensity));
        }
    }
    return strengths;
}

std::vector<LightStrength> LightMeter::greatest() const {
    std::vector<LightStrength> strengths;
    for (const auto& [name, measured] : lights_)
        strengths.push_back(atIntensity(measured.strength, measured.intensity, measured.most));
    return strengths;
}

LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options) {
    LightMeter meter;
    meter.measure(scene);
    return resolveLights(scene, keyView, options, meter);
}

LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options,
                       const LightMeter& meter) {
    LightSet rig;
    rig.falloff = options.falloff;
    std::vector<const Light*> lights;
    for (const auto& light : scene.lights)
        lights.push_back(light.get());
    std::vector<LightStrength> strengths = meter.strengthsOf(scene);
    std::vector<LightStrength> greatest = meter.greatest();
    double defaultAmbient = wantsAmbient(greatest) ? kFillAmbient : 0;
    if (greatest.empty()) {
        rig.own.push_back(std::make_unique<const Light>(keyLight(keyView)));
        lights.push_back(rig.own.back().get());
        strengths = greatest = {{peakIntensity(*lights.back())}};
        defaultAmbient = kDefaultAmbient;
    }
    const Units units = brightest(greatest);
    for (std::size_t i = 0; i < lights.size(); ++i) {
        rig.lights.push_back(resolve(*lights[i], strengths.at(i), units, options));
        rig.lights.back().points = pointsOf(*lights[i], options);
        rig.lights.back().castsShadow = castsShadow(*lights[i], options);
    }
    rig.ambient = options.ambient.value_or(scene.ambient.value_or(V3d(defaultAmbient)));
    return rig;
}

}  // namespace tavora::studio
