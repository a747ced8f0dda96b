#include "studio/render/tile_borders.h"

#include <algorithm>
#include <optional>

namespace tavora::studio {
namespace {

/// Each leaves a third of what is open; what is open then is no straight border.
constexpr int kSteps = 4;

}  // namespace

void TileBorders::add(const Pixel& pixel, std::span<const Imath::V2d> places,
                      std::span<const SeenLevels> first, std::span<const ViewSample> samples) {
    const std::size_t before = places.size() - samples.size();
    levels_.assign(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(before));
    for (const ViewSample& sample : samples)
        levels_.push_back(sample.sight.levels);
    std::optional<BorderSearch> search = BorderSearch::begin(places, levels_);
    if (!search) return;
    for (const ViewSample& sample : samples)
        search->color(sample.sight);
    borders_.push_back({pixel, *search, 0});
}

std::uint64_t TileBorders::search(ViewSampler& sampler, Refinement& refinement) {
    std::uint64_t count = 0;
    settleDone(refinement);
    for (int i = 0; i < kSteps && !borders_.empty(); ++i) {
        count += step(sampler);
        settleDone(refinement);
    }
    return count;
}

/// Looks once more in each pixel, and gives those up that show something else.
std::uint64_t TileBorders::step(ViewSampler& sampler) {
    places_.clear();
    inPixel_.clear();
    for (Border& border : borders_) {
        const Imath::V2d corner(border.pixel.x, border.pixel.y);
        const BorderSearch::Places next = border.search.nextPlaces();
        border.count = next.count;
        for (const Imath::V2d& place : next.all()) {
            inPixel_.push_back(place);
            places_.push_back({corner + place, border.pixel.known});
        }
    }
    samples_.resize(std::max(samples_.size(), places_.size()));
    sampler.look(places_, samples_);
    std::size_t first = 0;
    std::erase_if(borders_, [&](Border& border) {
        const bool fits = take(border, first);
        first += border.count;
        return !fits;
    });
    return places_.size();
}

bool TileBorders::take(Border& border, std::size_t first) {
    for (std::size_t i = first; i < first + border.count; ++i) {
        if (!border.search.add(inPixel_[i], samples_[i].sight)) return false;
    }
    return true;
}

void TileBorders::settleDone(Refinement& refinement) {
    std::erase_if(borders_, [&](const Border& border) {
        if (!border.search.isDone()) return false;
        refinement.settle(border.pixel.x, border.pixel.y, border.search.pixel());
        return true;
    });
}

}  // namespace tavora::studio
