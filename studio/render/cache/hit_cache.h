#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "studio/render/cache/cached_path.h"
#include "studio/render/image/picture.h"

namespace tavora::studio {

/// The hits of a picture's samples and the visibility of lights there, kept from one edit to
/// the next, by tile. Each tile is one thread's at a time; the rest is for one thread while
/// no other works.
class HitCache {
  public:
    /// `lights` and `samples` of each path, at most `memory` bytes of paths.
    HitCache(std::span<const PixelBox> tiles, int samples, const CachedLights& lights,
             std::size_t memory);

    const CachedLights& lights() const { return lights_; }

    /// What is kept was of another view.
    void forgetHits() { ++age_.view; }
    /// What is kept was of other lights; hits stay.
    void forgetLights() { ++age_.lights; }

    /// Ready for paths. The thread's that asks, until it asks for another.
    TileCache& open(std::size_t tile);

    std::size_t bytes() const { return budget_.taken(); }
    /// Fraction of the samples for which there is room so far, 0..1.
    double cachedFraction() const;
    /// Whether there was no room for some sample.
    bool wasExceeded() const { return budget_.wasExceeded(); }

  private:
    CachedLights lights_;
    std::size_t samples_ = 0;  ///< of all tiles
    CacheBudget budget_;
    CacheAge age_;
    std::vector<TileCache> tiles_;
};

}  // namespace tavora::studio
