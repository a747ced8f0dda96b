#pragma once

#include <ImathVec.h>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "studio/render/film.h"
#include "studio/render/seen_levels.h"
#include "studio/render/straight_border.h"

namespace tavora::studio {

/// Finds out how much of a pixel each of two even colours takes that meet along a
/// straight border: the usual edge of a zone, of a highlight or of an object. A
/// dozen samples placed about the border tell more than many spread evenly. Corners
/// of the pixel are looked at, too, where an ink line may end and a third colour begin.
class BorderSearch {
  public:
    static constexpr std::size_t kCorners = 4;
    /// Where to look next: about the border, and in corners.
    struct Places {
        std::array<Imath::V2d, StraightBorder::kTelling + kCorners> at;
        std::size_t count = 0;

        std::span<const Imath::V2d> all() const { return {at.data(), count}; }
    };

    /// By what the pixel's samples show so far, at places 0..1 each way. Nothing
    /// unless they show two colours that a line can keep apart.
    static std::optional<BorderSearch> begin(std::span<const Imath::V2d> places,
                                             std::span<const SeenLevels> levels);

    /// Lets a sample that begin() knew count for the colour of its side.
    void color(const Sight& sight);

    /// All of them are to be looked at.
    Places nextPlaces();

    /// What shows at one of the places. False when it does not fit: there is more
    /// to the pixel than two colours and a straight border.
    bool add(const Imath::V2d& place, const Sight& sight);

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

    BorderSearch(const std::array<Side, 2>& sides, const StraightBorder& border,
                 std::uint8_t corners)
        : sides_(sides), border_(border), corners_(corners) {}
    int sideOf(const Sight& sight) const;
    void color(int side, const Sight& sight);

    std::array<Side, 2> sides_;  ///< the near one, the far one
    StraightBorder border_;
    std::uint8_t corners_;  ///< that are yet to be looked at, a bit for each
};

}  // namespace tavora::studio
