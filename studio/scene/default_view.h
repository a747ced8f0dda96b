#pragma once

#include "studio/scene/scene.h"

namespace tavora::studio {

/// A perspective camera named "Framing" that sees the whole scene from the
/// front, a little from above and from the right, as close as a margin of 4%
/// on the tightest side lets it, for a picture of width / height = `aspect`.
/// A scene without triangles is framed as a unit cube. Any thread.
Camera framingCamera(const Scene& scene, double aspect);

/// A directional light from over the camera's left shoulder, named "Key".
Light keyLight(const Camera& camera);

/// The ambient colour that goes with the key light.
inline constexpr double kDefaultAmbient = 0.25;

}  // namespace tavora::studio
