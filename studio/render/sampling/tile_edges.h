#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/image/accumulator.h"
#include "studio/render/sampling/adaptive_sampler.h"
#include "studio/render/sampling/edge_search.h"
#include "studio/render/shade/camera_sampler.h"

namespace tavora::studio {

/// The pixels of a tile in which an edge is searched for, all at once. One thread
/// at a time.
class TileEdges {
  public:
    struct Pixel {
        int x;
        int y;
        const NeighbourVisibility* neighbours;  ///< of the lights there; until after search()
    };

    void clear() { edges_.clear(); }

    /// Notes a pixel for search(), if what it shows so far promises anything: `first` at the
    /// first positions, then `samples` at the others.
    void add(const Pixel& pixel, std::span<const Imath::V2d> positions,
             std::span<const Pixel8> first, std::span<const ShadedSample> samples);

    /// Finalizes the pixels whose edge is found. Returns how many samples that took.
    std::uint64_t search(const CameraRays& camera, CameraSampler& sampler,
                         AdaptiveSampler& adaptive);

  private:
    struct Edge {
        Pixel pixel;
        EdgeSearch search;
        std::size_t count = 0;  ///< of positions that the step samples
    };
    std::uint64_t step(const CameraRays& camera, CameraSampler& sampler);
    bool take(Edge& edge, std::size_t first);
    void finalizeDone(AdaptiveSampler& adaptive);

    std::vector<Edge> edges_;
    std::vector<Pixel8> encoded_;  ///< of one pixel
    std::vector<Imath::V2d> positions_;
    std::vector<CameraSample> cameraSamples_;
    std::vector<ShadedSample> samples_;
};

}  // namespace tavora::studio
