#pragma once

#include <ImathVec.h>
#include <array>
#include <optional>
#include <span>

#include "studio/render/film.h"
#include "studio/render/seen_levels.h"
#include "studio/render/straight_border.h"

namespace tavora::studio {

/// Finds out how much of a pixel each of two even colours takes that meet along a
/// straight border: the usual edge of a zone, of a highlight or of an object. A
/// dozen samples placed about the border tell more than many spread evenly.
class BorderSearch {
  public:
    static constexpr std::size_t kPlaces = StraightBorder::kTelling;

    /// By what the pixel's samples show so far, at places 0..1 each way. Nothing
    /// unless they show two colours that a line can keep apart.
    static std::optional<BorderSearch> begin(std::span<const Imath::V2d> places,
                                             std::span<const SeenLevels> levels);

    /// Lets a sample that begin() knew count for the colour of its side.
    void color(const Sight& sight, LightMeter& meter);

    /// Where to look next.
    std::array<Imath::V2d, kPlaces> places() const { return border_.telling(); }

    /// What shows at one of the places. False when it does not fit: there is more
    /// to the pixel than two colours and a straight border.
    bool add(const Imath::V2d& place, const Sight& sight, LightMeter& meter);

    /// Whether more samples would hardly change the pixel.
    bool isDone() const;

    /// Once it is: the pixel, scene-linear RGB, premultiplied, and alpha.
    std::array<float, 4> pixel() const;

  private:
    struct Side {
        SeenLevels levels{};  ///< of its first sample
        PixelSum sum;         ///< of those whose colour counts
        int count = 0;
    };

    BorderSearch(const std::array<Side, 2>& sides, const StraightBorder& border)
        : sides_(sides), border_(border) {}
    int sideOf(const Sight& sight) const;
    void color(int side, const Sight& sight, LightMeter& meter);

    std::array<Side, 2> sides_;  ///< the near one, the far one
    StraightBorder border_;
};

}  // namespace tavora::studio
