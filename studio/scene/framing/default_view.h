#pragma once

#include <span>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The share of the picture's width or height that a framed scene leaves free on
/// either side, along the tighter of both.
inline constexpr double kFramingMargin = 0.08;

/// A perspective camera named "Framing" for a picture of width / height = `aspect`.
/// It sees the whole scene from the front (+z), 30 degrees to the right and 20
/// above; a flat scene that would be edge-on so, from the left. The scene's
/// picture, that is the box around its projected triangles, is in the middle and
/// leaves kFramingMargin. A scene without triangles is framed as a unit cube.
/// Visits every triangle some times. Any thread.
Camera framingCamera(const Scene& scene, double aspect);

/// The same for a film: one camera for the scene at several times.
Camera framingCameraOfFilm(std::span<const Scene* const> scenes, double aspect);

/// What framing sees of a scene, which stays when that is posed anew: its objects, with
/// copies of the meshes that are bent.
Scene shapeOf(const Scene& scene);

/// What keyLight() is called.
inline constexpr const char* kKeyLightName = "Key";

/// A directional light from over the camera's left shoulder, named kKeyLightName.
Light keyLight(const Camera& camera);

/// The ambient colour that goes with the key light.
inline constexpr double kDefaultAmbient = 0.25;

}  // namespace tavora::studio
