#pragma once

#include <span>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// The margin on either side of a framed scene, as a fraction of the picture's width or
/// height, in whichever of the two directions the scene fits more tightly.
inline constexpr double kFramingMargin = 0.08;

/// A perspective camera named "Framing" for a picture of width / height = `aspect`.
/// It sees the whole scene from the front (+z), 30 degrees to the right and 20 above, or
/// from 30 degrees to the left for a flat scene that would be edge-on. The bounding box of
/// the projected triangles is in the middle of the picture, with a margin of
/// kFramingMargin. A scene without triangles is framed like a unit cube at the origin.
/// Visits every triangle several times. Any thread.
Camera framingCamera(const Scene& scene, double aspect);

/// The same for a film: one camera for the scene at several times.
Camera framingCameraOfFilm(std::span<const Scene* const> scenes, double aspect);

/// The part of a scene that framing needs: its objects, with copies of the meshes that are
/// deformed. Stays as it is when `scene` is posed again.
Scene geometryOf(const Scene& scene);

/// The name of keyLight().
inline constexpr const char* kKeyLightName = "Key";

/// A directional light, named kKeyLightName, that shines over the camera's left shoulder.
Light keyLight(const Camera& camera);

/// The ambient colour, in every channel, that goes with the key light.
inline constexpr double kDefaultAmbient = 0.25;

}  // namespace tavora::studio
