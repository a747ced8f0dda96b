#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <embree3/rtcore.h>
#include <span>
#include <vector>

#include "studio/render/ray_context.h"
#include "studio/render/ray_rows.h"
#include "studio/render/ray_scene.h"
#include "studio/render/shadow_starts.h"

namespace tavora::studio {

/// Traces many shadow rays at once, which costs least where neighbours start
/// and go alike. As much passes along each as does alone. One thread at a time.
class ShadowStream {
  public:
    /// At most `room` rays at once. `scene` must outlive it.
    ShadowStream(const RayScene& scene, std::size_t room)
        : scene_(&scene), progress_(room), rays_(room), shares_(room) {}

    /// Makes it empty.
    void clear() {
        count_ = 0;
        areLimited_ = false;
    }
    std::size_t count() const { return count_; }

    void add(const Ray& ray) {
        rays_.set(count_, ray);
        ShadowProgress& progress = progress_[count_++];
        progress = shadowProgress(ray);
        progress.leavesClear = true;
        areLimited_ |= progress.limits.exist();
    }

    /// RayScene::transmittance() along each ray that was added, in that order;
    /// valid until the next call.
    std::span<const double> trace();
    /// The same of rays without end from some of `starts`, by their numbers in `from`,
    /// to one `direction`.
    std::span<const double> traceToSky(const ShadowStarts& starts,
                                       std::span<const std::uint32_t> from,
                                       const Imath::V3d& direction);

  private:
    std::span<const double> trace(const RTCRayNp& rays);
    void judge();

    const RayScene* scene_;
    std::size_t count_ = 0;
    bool areLimited_ = false;  ///< some of the rays
    std::vector<ShadowProgress> progress_;
    RayRows rays_;
    std::vector<double> shares_;
};

}  // namespace tavora::studio
