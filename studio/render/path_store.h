#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "studio/render/kept_paths.h"
#include "studio/render/picture.h"

namespace tavora::studio {

/// The paths of a picture's samples, by tile. Each tile is one thread's at a
/// time; the rest is for one thread while no other works.
class PathStore {
  public:
    /// `lights` and `samples` of each path, at most `memory` bytes of paths.
    PathStore(std::span<const PixelBox> tiles, int samples, const KeptLights& lights,
              std::size_t memory);

    const KeptLights& lights() const { return lights_; }

    /// What is kept was of another view.
    void forgetHits() { ++age_.view; }
    /// What is kept was of other lights; hits stay.
    void forgetLights() { ++age_.lights; }

    /// Ready for paths. The thread's that asks, until it asks for another.
    TilePaths& open(std::size_t tile);

    std::size_t bytes() const { return budget_.taken(); }
    /// Share of the samples for which there is room so far, 0..1.
    double keptShare() const;
    /// Whether there was no room for some sample.
    bool wasExceeded() const { return budget_.wasExceeded(); }

  private:
    KeptLights lights_;
    std::size_t samples_ = 0;  ///< of all tiles
    PathBudget budget_;
    PathAge age_;
    std::vector<TilePaths> tiles_;
};

}  // namespace tavora::studio
