#pragma once

#include "studio/scene/scene.h"

namespace tavora::studio {

/// A camera that frames `bounds` from the front, a little from above and from
/// the right, for a picture of width / height = `aspect`. Empty bounds are
/// framed as a unit cube.
Camera framingCamera(const Imath::Box3d& bounds, double aspect);

/// A directional light from over the camera's left shoulder, named "Key".
Light keyLight(const Camera& camera);

/// The ambient colour that goes with the key light.
inline constexpr double kDefaultAmbient = 0.25;

}  // namespace tavora::studio
