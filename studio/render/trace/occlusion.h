#pragma once

#include <cstddef>
#include <cstdint>
#include <embree3/rtcore.h>
#include <span>
#include <vector>

#include "studio/render/trace/ray_batch.h"
#include "studio/render/trace/ray_query.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// Traces many shadow rays at once, which costs least where neighbours start and go alike.
/// As much light passes along each as RayScene::transmittance() says. One thread at a time.
///
/// The caller writes rays into batch(), and where needsStates() also their states, then
/// calls trace().
class Occlusion {
  public:
    /// At most `capacity` rays at once. `scene` must outlive it.
    Occlusion(const RayScene& scene, std::size_t capacity)
        : scene_(&scene), batch_(capacity), states_(capacity), transmittances_(capacity) {}

    RayBatch& batch() { return batch_; }

    /// Whether rays need their states: where some surfaces do not stop all light, or hits
    /// near the rays' ends have to be judged.
    bool needsStates(bool judgesEnds) const { return judgesEnds || scene_->hasFilteredOccluders(); }
    void setState(std::size_t ray, const OcclusionState& state) {
        states_[ray] = state;
        states_[ray].skipsClear = true;
    }

    /// The transmittance along each of the first `count` rays, 0..1; valid until the next
    /// call. `judgesEnds` where anything may lie so near the end of a ray that Embree cannot
    /// tell on which side. `origins`, if not null, has the rays' origins instead of batch().
    std::span<const double> trace(std::size_t count, bool judgesEnds,
                                  const RTCRayNp* origins = nullptr);

  private:
    void traceClear(const RTCRayNp& rays, std::size_t count);

    const RayScene* scene_;
    RayBatch batch_;
    std::vector<OcclusionState> states_;
    std::vector<double> transmittances_;
};

}  // namespace tavora::studio
