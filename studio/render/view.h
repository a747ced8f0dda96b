#pragma once

#include "studio/render/ray_scene.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// From places in the picture to viewing rays. Immutable; any thread.
class View {
  public:
    /// A picture of `width` x `height` pixels, upright field as the camera's,
    /// with `samples` samples a pixel.
    View(const Camera& camera, int width, int height, int samples);

    /// `x` to the right and `y` down, in pixels from the upper left corner.
    Ray rayThrough(double x, double y) const {
        Ray ray;
        ray.origin = eye_;
        ray.direction = forward_;
        (orthographic_ ? ray.spot : ray.spread) = footprint_;
        aim(x, y, ray);
        return ray;
    }
    /// Makes `ray`, which rayThrough() gave, that through another place.
    void aim(double x, double y, Ray& ray) const {
        const Imath::V3d across = corner_ + right_ * x + down_ * y;
        if (orthographic_) {
            ray.origin = eye_ + across;
        } else {
            ray.direction = (forward_ + across).normalized();
        }
    }

  private:
    Imath::V3d right_;   ///< one pixel to the right, at distance 1 or in the plane of view
    Imath::V3d down_;    ///< one pixel down
    Imath::V3d corner_;  ///< from the eye to the upper left corner
    Imath::V3d eye_;
    Imath::V3d forward_;  ///< unit
    bool orthographic_;
    double footprint_;  ///< of a sample, at distance 1 or everywhere
};

}  // namespace tavora::studio
