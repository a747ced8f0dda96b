#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/trace/camera_rays.h"
#include "studio/render/trace/ray_batch.h"
#include "studio/render/trace/ray_query.h"
#include "studio/render/trace/ray_scene.h"

namespace tavora::studio {

/// Finds what camera rays hit first, many at once, which costs least where neighbours start
/// and go alike. Each hits what RayScene::nextHit() finds for it. One thread at a time.
class FirstHits {
  public:
    /// At most `capacity` rays at once. `scene` must outlive it.
    FirstHits(const RayScene& scene, std::size_t capacity);

    /// `hits[i]` becomes the first hit of ray i of `rays`, or none, for each i in `numbers`.
    void find(const CameraRayBatch& rays, std::span<const std::uint32_t> numbers,
              std::span<Hit> hits);

  private:
    void load(const CameraRayBatch& rays, std::span<const std::uint32_t> numbers);
    RTCRayHitNp embree();
    bool isNearEdge(std::size_t at) const;

    const RayScene* scene_;
    RayBatch rays_;
    // As in FirstHitSearch:
    std::vector<float> distances_;
    std::vector<std::uint8_t> isDoubtful_;
    // What Embree says of the hits:
    std::vector<float> u_;
    std::vector<float> v_;
    std::vector<std::uint32_t> meshes_;
    std::vector<std::uint32_t> instances_;
    std::vector<std::uint32_t> triangles_;
};

}  // namespace tavora::studio
