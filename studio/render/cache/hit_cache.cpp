#include "studio/render/cache/hit_cache.h"

namespace tavora::studio {
namespace {

std::size_t pixelsOf(const PixelBox& tile) {
    return static_cast<std::size_t>(tile.width()) * static_cast<std::size_t>(tile.height());
}

}  // namespace

HitCache::HitCache(std::span<const PixelBox> tiles, int samples, const CachedLights& lights,
                   std::size_t memory)
    : lights_(lights), budget_(memory) {
    tiles_.reserve(tiles.size());
    for (const PixelBox& tile : tiles) {
        tiles_.emplace_back(pixelsOf(tile), samples, lights, budget_);
        samples_ += pixelsOf(tile) * static_cast<std::size_t>(samples);
    }
}

TileCache& HitCache::open(std::size_t tile) {
    tiles_[tile].open(age_);
    return tiles_[tile];
}

double HitCache::cachedFraction() const {
    std::size_t kept = 0;
    for (const TileCache& tile : tiles_)
        kept += tile.keptSamples();
    return static_cast<double>(kept) / static_cast<double>(samples_);
}

}  // namespace tavora::studio
