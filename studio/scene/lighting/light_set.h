#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// A size for lights of one kind: metres or radians, as in Light.
struct LightSize {
    std::string lights;  ///< name or glob
    double size = 0;
};

/// How physical light units become the 0..1 that a gradient of zones wants.
struct LightingOptions {
    std::optional<Imath::V3d> ambient;  ///< display-referred; overrides the scene's
    std::optional<double> exposure;  ///< factor on physical units; empty: as resolveLights() says
    bool falloff = false;            ///< inverse square and range, instead of even light
    std::vector<LightSize> radii = {};  ///< over those of the scene; the last that matches counts
    std::vector<LightSize> angles = {};
    std::vector<std::string> withoutShadows = {};  ///< names or globs of lights that cast none
};

/// One light with its level settled.
struct ResolvedLight {
    const Light* light = nullptr;
    Imath::V3d color;  ///< display-referred, level counted in, before cone and falloff
    double scale = 1;  ///< with falloff: factor on 1 / distance^2; else unused
    /// Of a light with a size; else empty. See area_light.h.
    std::vector<Imath::V3d> points = {};
    bool castsShadow = true;
};

/// The lights of one render. Its lights point into the scene or into `own`.
struct LightSet {
    std::vector<ResolvedLight> lights;
    Imath::V3d ambient{0, 0, 0};
    bool falloff = false;
    std::vector<std::unique_ptr<const Light>> own;  ///< lights the file lacked
};

/// How bright a light is where it meets surfaces.
struct LightStrength {
    double value = 0;     ///< lux times the brightest colour channel, facing the light
    bool sun = true;      ///< directional
    bool reaches = true;  ///< false: a lamp that lights no surface; value is that at the centre
    double cone = 1;      ///< what the cone of a spot leaves on the surfaces that it reaches
};

/// Measures how strong a scene's lights are where they meet it: at one time, or at several
/// so that over a film the levels of light stay, however lights and objects move. Lights
/// are told apart by name. One thread.
class LightMeter {
  public:
    /// Measures the scene as it stands. Of a point or spot light lampReach() of the
    /// scene's surfaces counts; of several times the one where it reaches them best.
    void measure(const Scene& scene);

    /// Of a scene's lights, in its order, with the intensity that they have now.
    std::vector<LightStrength> strengthsOf(const Scene& scene) const;

    /// Of all lights that were measured, each at its most intense.
    std::vector<LightStrength> greatest() const;

  private:
    struct Measured {
        LightStrength strength;  ///< where it reached best
        double intensity = 0;    ///< then
        double most = 0;         ///< greatest intensity
    };
    std::map<std::string, Measured> lights_;
};

/// The ambient colour of a scene with lights but no ambient of its own, unless
/// its only light is one sun.
inline constexpr double kFillAmbient = 0.1;

/// Settles levels. The strongest sun counts as 1 and other suns in proportion: no
/// lamp turns the sun's side into shade. Point and spot lights count in proportion
/// to the strongest light of all. A fixed exposure is a factor on all
/// strengths instead. A scene without lights gets a key light seen from `keyView` and
/// an ambient of kDefaultAmbient. `meter` has measured the scene's lights.
LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options,
                       const LightMeter& meter);

/// Measured as the scene stands.
LightSet resolveLights(const Scene& scene, const Camera& keyView, const LightingOptions& options);

}  // namespace tavora::studio
