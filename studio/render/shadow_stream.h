#pragma once

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
    /// `scene` must outlive it. Keeps room for as many rays as were ever traced
    /// at once, 112 bytes each.
    explicit ShadowStream(const RayScene& scene) : scene_(&scene) {}

    /// Makes it empty.
    void clear() {
        rays_.clear();
        progress_.clear();
    }

    void add(const Ray& ray) {
        rays_.push_back(embreeRay(ray, static_cast<unsigned>(rays_.size())));
        progress_.push_back(shadowProgress(ray));
    }

    /// RayScene::transmittance() along each ray that was added, in that order;
    /// valid until the next call.
    std::span<const double> trace();

  private:
    const RayScene* scene_;
    std::vector<ShadowProgress> progress_;
    std::vector<RTCRay> rays_;
    std::vector<double> shares_;
};

}  // namespace tavora::studio
