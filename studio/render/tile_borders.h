#pragma once

#include <ImathVec.h>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "studio/render/border_search.h"
#include "studio/render/film.h"
#include "studio/render/refinement.h"
#include "studio/render/view_samples.h"

namespace tavora::studio {

/// The pixels of a tile in which a border is searched for, all at once. One thread
/// at a time.
class TileBorders {
  public:
    struct Pixel {
        int x;
        int y;
        const KnownShadows* known;  ///< until after search()
    };

    void clear() { borders_.clear(); }

    /// Searches in a pixel later, if what it shows so far promises anything: `first`
    /// at the first places, then `samples` at the others.
    void add(const Pixel& pixel, std::span<const Imath::V2d> places,
             std::span<const SeenLevels> first, std::span<const ViewSample> samples);

    /// Settles the pixels whose border is found. Returns how many samples that took.
    std::uint64_t search(ViewSampler& sampler, Refinement& refinement);

  private:
    struct Border {
        Pixel pixel;
        BorderSearch search;
        std::size_t count = 0;  ///< of places that the step looks at
    };
    std::uint64_t step(ViewSampler& sampler);
    bool take(Border& border, std::size_t first);
    void settleDone(Refinement& refinement);

    std::vector<Border> borders_;
    std::vector<SeenLevels> levels_;  ///< of one pixel
    std::vector<Imath::V2d> inPixel_;
    std::vector<ViewPlace> places_;
    std::vector<ViewSample> samples_;
};

}  // namespace tavora::studio
