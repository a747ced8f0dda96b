#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <embree3/rtcore.h>
#include <limits>
#include <span>
#include <vector>

#include "studio/render/ray_context.h"
#include "studio/render/ray_scene.h"
#include "studio/render/shadow_rays.h"

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

    void add(const Ray& ray) {
        setEmbreeRay(ray, static_cast<unsigned>(count_), rays_[count_]);
        progress_[count_] = {ray.spot, ray.spread, ray.spared, 0, true, false};
        ++count_;
    }

    /// Adds a ray without end; `direction` as embreeDirection() gives it.
    void addToSky(const ShadowOrigin& origin, const Imath::V3f& direction) {
        const Imath::V3f start(origin.position);
        rays_[count_] = {start.x,
                         start.y,
                         start.z,
                         0,
                         direction.x,
                         direction.y,
                         direction.z,
                         0,
                         kEndless,
                         ~0U,
                         static_cast<unsigned>(count_),
                         0};
        progress_[count_] = {origin.spot, 0, origin.spared, 0, true, false};
        ++count_;
    }

    /// RayScene::transmittance() along each ray that was added, in that order;
    /// valid until the next call.
    std::span<const double> trace();

  private:
    static constexpr float kEndless = std::numeric_limits<float>::infinity();

    const RayScene* scene_;
    std::size_t count_ = 0;
    std::vector<ShadowProgress> progress_;
    std::vector<RTCRay> rays_;
    std::vector<double> shares_;
};

}  // namespace tavora::studio
