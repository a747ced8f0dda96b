#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <embree3/rtcore.h>
#include <span>
#include <vector>

#include "studio/render/ray_context.h"
#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// Traces many shadow rays at once, which costs least where neighbours start
/// and go alike. As much passes along each as does alone. One thread at a time.
class ShadowStream {
  public:
    /// At most `room` rays at once. `scene` must outlive it.
    ShadowStream(const RayScene& scene, std::size_t room)
        : scene_(&scene), progress_(room), rays_(room), shares_(room) {}

    /// Makes it empty.
    void clear() { count_ = 0; }

    void add(const Ray& ray) { add(ray, embreeDirection(ray.direction), ray.farthest); }

    /// Adds `ray` turned to `direction`, as embreeDirection() gives it, and that long.
    void add(const Ray& ray, const Imath::V3f& direction, double farthest) {
        setEmbreeRay(ray, direction, farthest, static_cast<unsigned>(count_), rays_[count_]);
        progress_[count_] = shadowProgress(ray);
        progress_[count_].leavesClear = true;
        ++count_;
    }

    /// RayScene::transmittance() along each ray that was added, in that order;
    /// valid until the next call.
    std::span<const double> trace();

  private:
    const RayScene* scene_;
    std::size_t count_ = 0;
    std::vector<ShadowProgress> progress_;
    std::vector<RTCRay> rays_;
    std::vector<double> shares_;
};

}  // namespace tavora::studio
