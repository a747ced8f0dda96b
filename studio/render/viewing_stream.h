#pragma once

#include <cstddef>
#include <embree3/rtcore.h>
#include <span>
#include <vector>

#include "studio/render/ray_context.h"
#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// Traces many viewing rays at once, which costs least where neighbours start
/// and go alike. Each meets what it meets alone. One thread at a time.
class ViewingStream {
  public:
    /// At most `room` rays at once. `scene` must outlive it.
    ViewingStream(const RayScene& scene, std::size_t room)
        : scene_(&scene), progress_(room), queries_(room) {}

    /// `hits[i]` becomes the first hit of `rays[i]`; infinitely far where there
    /// is none.
    void firstHits(std::span<const Ray> rays, std::span<HitKey> hits);

  private:
    void start(std::span<const Ray> rays);

    const RayScene* scene_;
    std::vector<ViewingProgress> progress_;
    std::vector<RTCRayHit> queries_;
};

}  // namespace tavora::studio
