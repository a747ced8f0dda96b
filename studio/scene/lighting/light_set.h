#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// A size for lights of one kind: a radius in metres (Light::radius) or an angle in
/// radians (Light::angle).
struct LightSize {
    std::string lights;  ///< light name or glob
    double size = 0;
};

/// How physical light units are mapped to the range 0..1 that a gradient of zones expects.
struct LightingOptions {
    std::optional<Imath::V3d> ambient;  ///< display-referred; overrides the scene's
    /// Factor on physical units; empty: chosen from the lights, see resolveLights().
    std::optional<double> exposure;
    bool falloff = false;  ///< inverse square and range, instead of even light
    /// These override the sizes in the scene; the last entry that matches a light counts.
    std::vector<LightSize> radii = {};
    std::vector<LightSize> angles = {};
    std::vector<std::string> withoutShadows = {};  ///< names or globs of lights that cast none
};

/// A light with its brightness and size for one render.
struct ResolvedLight {
    const Light* light = nullptr;
    Imath::V3d color;  ///< display-referred, exposure included, before cone and falloff
    double scale = 1;  ///< with falloff: factor on 1 / distance^2; else unused
    /// The sample points of an area light (see area_light.h); empty for a light without size.
    std::vector<Imath::V3d> points = {};
    bool castsShadow = true;
};

/// The lights of one render. Its lights point into the scene or into `own`.
struct LightSet {
    std::vector<ResolvedLight> lights;
    Imath::V3d ambient{0, 0, 0};                    ///< display-referred
    bool falloff = false;                           ///< as in LightingOptions
    std::vector<std::unique_ptr<const Light>> own;  ///< lights that were added to the scene's
};

/// How bright a light is on the surfaces that it lights.
struct LightStrength {
    /// Lux times the brightest colour channel, on a surface that faces the light.
    double value = 0;
    bool directional = true;
    /// False for a point or spot light that lights no surface; `value` is then the
    /// strength at the centre of the scene.
    bool reaches = true;
    double cone = 1;  ///< spot light: its cone attenuation on the surfaces that it lights
};

/// Measures how bright a scene's lights are on its surfaces, at one time or at several. A
/// film measures at several times, so that its exposure stays the same however lights and
/// objects move. Lights are identified by name. One thread.
class LightMeter {
  public:
    /// Measures the scene in its current pose. For a point or spot light this is
    /// punctualStrength() on the scene's surfaces; of several measurements the one that
    /// is brightest for the light's intensity is kept.
    void measure(const Scene& scene);

    /// The strengths of a scene's lights, in the scene's order, for the intensities that
    /// they have now.
    std::vector<LightStrength> strengthsOf(const Scene& scene) const;

    /// The strengths of all measured lights, each at its greatest measured intensity.
    std::vector<LightStrength> greatest() const;

  private:
    struct Measured {
        LightStrength strength;    ///< of the best measurement
        double intensity = 0;      ///< of the light in that measurement
        double peakIntensity = 0;  ///< the greatest of all measurements
    };
    std::map<std::string, Measured> lights_;
};

/// The ambient colour, in every channel, of a scene that has lights but sets no ambient
/// colour, unless its only light is one directional light.
inline constexpr double kFillAmbient = 0.1;

/// Chooses the exposure and resolves all lights of a scene. The strongest directional light
/// gets brightness 1 and other directional lights are in proportion, so that no point or
/// spot light darkens the side that a sun lights. Point and spot lights are in proportion to
/// the strongest light of any kind. With a fixed exposure, every strength is multiplied by
/// that instead. A scene without lights gets a key light, placed relative to the camera
/// `keyView`, and an ambient of kDefaultAmbient. `meter` must have measured the scene's
/// lights. The scene must outlive the result. Any thread.
LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options,
                       const LightMeter& meter);

/// The same, with the lights measured in the scene's current pose.
LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options);

}  // namespace tavora::studio
