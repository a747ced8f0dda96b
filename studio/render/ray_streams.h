#pragma once

#include <cstddef>
#include <embree3/rtcore.h>
#include <span>
#include <vector>

#include "studio/render/ray_context.h"
#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// Traces many rays at once, which costs least where neighbours start and go
/// alike. Each gets what RayScene finds for it alone. One thread at a time.
class RayStreams {
  public:
    /// `scene` must outlive it. Keeps room for as many rays as were ever traced
    /// at once, 128 bytes each.
    explicit RayStreams(const RayScene& scene) : scene_(&scene) {}

    /// `hits[i]` becomes the first hit of the viewing ray `rays[i]`; infinitely
    /// far where there is none.
    void firstHits(std::span<const Ray> rays, std::span<HitKey> hits);

    /// `shares[i]` becomes RayScene::transmittance() along `rays[i]`.
    void transmittances(std::span<const Ray> rays, std::span<double> shares);

  private:
    void start(std::span<const Ray> rays);
    void traceAlone(unsigned id);

    const RayScene* scene_;
    std::vector<RayProgress> progress_;
    std::vector<RTCRayHit> viewing_;
    std::vector<RTCRay> shadows_;
};

}  // namespace tavora::studio
