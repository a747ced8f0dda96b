#include "studio/render/sampling/tile_edges.h"

#include <algorithm>
#include <optional>

namespace tavora::studio {
namespace {

/// Each leaves a third of what is open; what is open then is no straight edge.
constexpr int kSteps = 4;

}  // namespace

void TileEdges::add(const Pixel& pixel, std::span<const Imath::V2d> positions,
                    std::span<const Pixel8> first, std::span<const ShadedSample> samples) {
    const std::size_t before = positions.size() - samples.size();
    encoded_.assign(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(before));
    for (const ShadedSample& sample : samples)
        encoded_.push_back(sample.radiance.encoded);
    std::optional<EdgeSearch> search = EdgeSearch::begin(positions, encoded_);
    if (!search) return;
    for (const ShadedSample& sample : samples)
        search->addColor(sample.radiance);
    edges_.push_back({pixel, *search, 0});
}

std::uint64_t TileEdges::search(const CameraRays& camera, CameraSampler& sampler,
                                AdaptiveSampler& adaptive) {
    std::uint64_t count = 0;
    finalizeDone(adaptive);
    for (int i = 0; i < kSteps && !edges_.empty(); ++i) {
        count += step(camera, sampler);
        finalizeDone(adaptive);
    }
    return count;
}

/// Looks once more in each pixel, and gives those up that show something else.
std::uint64_t TileEdges::step(const CameraRays& camera, CameraSampler& sampler) {
    cameraSamples_.clear();
    positions_.clear();
    for (Edge& edge : edges_) {
        const Imath::V2d corner(edge.pixel.x, edge.pixel.y);
        const EdgeSearch::Positions next = edge.search.nextPositions();
        edge.count = next.count;
        for (const Imath::V2d& position : next.all()) {
            positions_.push_back(position);
            cameraSamples_.push_back({corner + position, edge.pixel.neighbours});
        }
    }
    samples_.resize(std::max(samples_.size(), cameraSamples_.size()));
    sampler.sample(camera, cameraSamples_, {}, samples_);
    std::size_t first = 0;
    std::erase_if(edges_, [&](Edge& edge) {
        const bool fits = take(edge, first);
        first += edge.count;
        return !fits;
    });
    return cameraSamples_.size();
}

bool TileEdges::take(Edge& edge, std::size_t first) {
    for (std::size_t i = first; i < first + edge.count; ++i) {
        if (!edge.search.add(positions_[i], samples_[i].radiance)) return false;
    }
    return true;
}

void TileEdges::finalizeDone(AdaptiveSampler& adaptive) {
    std::erase_if(edges_, [&](const Edge& edge) {
        if (!edge.search.isDone()) return false;
        adaptive.finalize(edge.pixel.x, edge.pixel.y, edge.search.pixel());
        return true;
    });
}

}  // namespace tavora::studio
