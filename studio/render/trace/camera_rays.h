#pragma once

#include <cstddef>

#include "studio/render/trace/ray.h"
#include "studio/render/trace/vector_array.h"
#include "studio/scene/scene.h"

namespace tavora::studio {

/// Rays from one camera as structure of arrays.
struct CameraRayBatch {
    explicit CameraRayBatch(std::size_t capacity) : origins(capacity), directions(capacity) {}

    Ray ray(std::size_t number) const {
        Ray ray;
        ray.origin = origins[number];
        ray.direction = directions[number];
        ray.footprint = footprint;
        ray.coneSpread = coneSpread;
        return ray;
    }

    VectorArray origins;
    VectorArray directions;  ///< unit
    double footprint = 0;    ///< as in Ray, of all of them
    double coneSpread = 0;   ///< likewise
};

/// From positions in the picture to camera rays. Immutable; any thread.
class CameraRays {
  public:
    /// A picture of `width` x `height` pixels, its vertical field of view the camera's, with
    /// `samples` samples a pixel, which together cover it.
    CameraRays(const Camera& camera, int width, int height, int samples);

    /// The ray through a position: `x` to the right and `y` down, in pixels from the upper
    /// left corner.
    Ray through(double x, double y) const;

    /// Sets the first `count` rays of `rays` to those through the positions.
    void generate(const double* x, const double* y, std::size_t count, CameraRayBatch& rays) const;

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
