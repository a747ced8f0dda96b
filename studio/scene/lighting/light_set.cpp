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

constexpr double kMinDistance = 0.05;   // to the scene's centre, as a fraction of its size
constexpr double kMaxBrightness = 1e6;  // that a fixed exposure can give a light
// A spot light without falloff is divided by its cone attenuation, but by no less than this.
constexpr double kMinCone = 0.05;

/// Whether the light has a position: a point or spot light.
bool isPunctual(const Light& light) {
    return light.kind != LightKind::Directional;
}

/// Squared distance to the centre of the scene, for a punctual light that lights no surface.
double centreDistance2(const Light& light, const Scene& scene) {
    const bool empty = scene.bounds.isEmpty();
    const double size = empty ? 1.0 : std::max(scene.bounds.size().length(), 1e-30);
    const V3d centre = empty ? V3d(0) : scene.bounds.center();
    return std::max((light.position - centre).length2(), kMinDistance * kMinDistance * size * size);
}

/// The light's colour, display-referred, scaled so that its brightest channel is 1.
V3d hueOf(const Light& light) {
    const V3d color(std::max(light.color.x, 0.0F), std::max(light.color.y, 0.0F),
                    std::max(light.color.z, 0.0F));
    const double peak = std::max({color.x, color.y, color.z});
    if (!(peak > 0)) return V3d(0);
    return V3d(toEncoded(color.x / peak), toEncoded(color.y / peak), toEncoded(color.z / peak));
}

/// The strengths that get brightness 1, by kind of light.
struct ReferenceStrengths {
    double directional = 0;
    double punctual = 0;
};

/// Directional lights refer to the brightest of their kind, whose brightness so does not
/// depend on the other lights; punctual lights refer to the brightest light of any kind.
ReferenceStrengths referenceStrengths(const std::vector<LightStrength>& strengths) {
    ReferenceStrengths reference;
    double unreached = 0;
    for (const LightStrength& strength : strengths) {
        double& greatest = strength.directional ? reference.directional
                           : strength.reaches   ? reference.punctual
                                                : unreached;
        greatest = std::max(greatest, strength.value);
    }
    reference.punctual = std::max(reference.punctual, reference.directional);
    if (!(reference.punctual > 0)) reference.punctual = unreached > 0 ? unreached : 1.0;
    if (!(reference.directional > 0)) reference.directional = 1.0;
    return reference;
}

ResolvedLight resolve(const Light& light, const LightStrength& strength,
                      const ReferenceStrengths& reference, const LightingOptions& options) {
    ResolvedLight resolved;
    resolved.light = &light;
    const double referenceStrength =
        options.exposure ? 1.0 / *options.exposure
                         : (isPunctual(light) ? reference.punctual : reference.directional);
    double brightness = strength.value / referenceStrength;
    if (options.falloff) {
        if (isPunctual(light) && strength.value > 0)
            resolved.scale = peakIntensity(light) / strength.value;
    } else {
        if (!options.exposure) brightness = std::min(brightness, 1.0);
        brightness /= std::max(strength.cone, kMinCone);
    }
    resolved.color = hueOf(light) * std::clamp(brightness, 0.0, kMaxBrightness);
    return resolved;
}

/// Whether more than a single directional light shines.
bool needsFillAmbient(const std::vector<LightStrength>& strengths) {
    const auto shines = [](const LightStrength& strength) { return strength.value > 0; };
    const auto punctualShines = [](const LightStrength& s) {
        return !s.directional && s.value > 0;
    };
    return std::count_if(strengths.begin(), strengths.end(), shines) > 1 ||
           std::any_of(strengths.begin(), strengths.end(), punctualShines);
}

/// The size in the last entry that matches the light, else `stored`, the light's own size.
double sizeOf(const Light& light, double stored, const std::vector<LightSize>& overrides) {
    double size = stored;
    for (const LightSize& entry : overrides) {
        if (matchesName(entry.lights, light.name)) size = entry.size;
    }
    return size;
}

std::vector<V3d> pointsOf(const Light& light, const LightingOptions& options) {
    return isPunctual(light)
               ? punctualLightPoints(light, sizeOf(light, light.radius, options.radii))
               : directionalLightPoints(light, sizeOf(light, light.angle, options.angles));
}

bool castsShadow(const Light& light, const LightingOptions& options) {
    const auto& without = options.withoutShadows;
    return light.castsShadow &&
           std::none_of(without.begin(), without.end(),
                        [&](const std::string& lights) { return matchesName(lights, light.name); });
}

/// Scales a strength, measured at intensity `measured`, to another intensity.
LightStrength atIntensity(LightStrength strength, double measured, double intensity) {
    if (measured != intensity) strength.value *= measured > 0 ? intensity / measured : 0;
    return strength;
}

}  // namespace

void LightMeter::measure(const Scene& scene) {
    const auto isPunctualLight = [](const auto& light) { return isPunctual(*light); };
    std::vector<SurfaceSample> samples;
    if (std::any_of(scene.lights.begin(), scene.lights.end(), isPunctualLight))
        samples = surfaceSamples(scene);
    for (const auto& light : scene.lights) {
        Measured now;
        now.intensity = now.peakIntensity = now.strength.value = peakIntensity(*light);
        if (isPunctual(*light)) {
            LightStrength& strength = now.strength;
            const PunctualStrength onSurfaces = punctualStrength(*light, samples);
            strength.directional = false;
            strength.reaches = onSurfaces.illuminance > 0;
            strength.cone = onSurfaces.cone;
            strength.value = strength.reaches ? onSurfaces.illuminance
                                              : strength.value / centreDistance2(*light, scene);
        }
        const auto [entry, isNew] = lights_.try_emplace(light->name, now);
        if (isNew) continue;
        Measured& best = entry->second;
        const double peak = std::max(best.peakIntensity, now.peakIntensity);
        // Compares the strengths per unit of intensity, without a division by 0.
        const bool isBetter =
            std::make_pair(now.strength.reaches, now.strength.value * best.intensity) >
            std::make_pair(best.strength.reaches, best.strength.value * now.intensity);
        if (now.intensity > 0 && (isBetter || !(best.intensity > 0))) best = now;
        best.peakIntensity = peak;
    }
}

std::vector<LightStrength> LightMeter::strengthsOf(const Scene& scene) const {
    std::vector<LightStrength> strengths;
    for (const auto& light : scene.lights) {
        const auto entry = lights_.find(light->name);
        const double intensity = peakIntensity(*light);
        if (entry == lights_.end()) {  // hidden at every time that was measured
            strengths.push_back({intensity, !isPunctual(*light), !isPunctual(*light), 1});
        } else {
            const Measured& measured = entry->second;
            strengths.push_back(atIntensity(measured.strength, measured.intensity, intensity));
        }
    }
    return strengths;
}

std::vector<LightStrength> LightMeter::greatest() const {
    std::vector<LightStrength> strengths;
    for (const auto& [name, measured] : lights_)
        strengths.push_back(
            atIntensity(measured.strength, measured.intensity, measured.peakIntensity));
    return strengths;
}

LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options) {
    LightMeter meter;
    meter.measure(scene);
    return resolveLights(scene, keyView, options, meter);
}

LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options,
                       const LightMeter& meter) {
    LightSet result;
    result.falloff = options.falloff;
    std::vector<const Light*> lights;
    for (const auto& light : scene.lights)
        lights.push_back(light.get());
    std::vector<LightStrength> strengths = meter.strengthsOf(scene);
    std::vector<LightStrength> greatest = meter.greatest();
    double defaultAmbient = needsFillAmbient(greatest) ? kFillAmbient : 0;
    if (greatest.empty()) {
        result.own.push_back(std::make_unique<const Light>(keyLight(keyView)));
        lights.push_back(result.own.back().get());
        strengths = greatest = {{peakIntensity(*lights.back())}};
        defaultAmbient = kDefaultAmbient;
    }
    const ReferenceStrengths reference = referenceStrengths(greatest);
    for (std::size_t i = 0; i < lights.size(); ++i) {
        result.lights.push_back(resolve(*lights[i], strengths.at(i), reference, options));
        result.lights.back().points = pointsOf(*lights[i], options);
        result.lights.back().castsShadow = castsShadow(*lights[i], options);
    }
    result.ambient = options.ambient.value_or(scene.ambient.value_or(V3d(defaultAmbient)));
    return result;
}

}  // namespace tavora::studio
