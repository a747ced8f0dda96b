#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/ray_context.h"
#include "studio/render/ray_rows.h"
#include "studio/render/ray_scene.h"

namespace tavora::studio {

/// Traces many viewing rays at once, which costs least where neighbours start
/// and go alike. Each meets what it meets alone. One thread at a time.
class ViewingStream {
  public:
    /// At most `room` rays at once. `scene` must outlive it.
    ViewingStream(const RayScene& scene, std::size_t room)
        : scene_(&scene),
          rays_(room),
          distances_(room),
          areDoubtful_(room),
          u_(room),
          v_(room),
          meshes_(room),
          instances_(room),
          triangles_(room) {}

    /// `hits[i]` becomes the first hit of `rays[i]`, or none.
    void firstHits(std::span<const Ray> rays, std::span<Hit> hits);

  private:
    void start(std::span<const Ray> rays);
    RTCRayHitNp embree();
    bool isNearEdge(std::size_t at) const;

    const RayScene* scene_;
    RayRows rays_;
    // As in FirstHits:
    std::vector<float> distances_;
    std::vector<std::uint8_t> areDoubtful_;
    // What Embree says of the hits:
    std::vector<float> u_;
    std::vector<float> v_;
    std::vector<std::uint32_t> meshes_;
    std::vector<std::uint32_t> instances_;
    std::vector<std::uint32_t> triangles_;
};

}  // namespace tavora::studio
