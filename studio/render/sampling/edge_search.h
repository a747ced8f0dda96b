#pragma once

#include <ImathVec.h>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "studio/render/image/accumulator.h"
#include "studio/render/image/pixel8.h"
#include "studio/render/sampling/straight_edge.h"

namespace tavora::studio {

/// Finds out how much of a pixel each of two even colours takes that meet along a
/// straight edge: the usual edge of a zone, of a highlight or of an object. A
/// dozen samples placed about the edge tell more than many spread evenly. Corners
/// of the pixel are looked at, too, where an ink line may end and a third colour begin.
class EdgeSearch {
  public:
    static constexpr std::size_t kCorners = 4;
    /// Where to look next: about the edge, and in corners.
    struct Positions {
        std::array<Imath::V2d, StraightEdge::kProbes + kCorners> at;
        std::size_t count = 0;

        std::span<const Imath::V2d> all() const { return {at.data(), count}; }
    };

    /// By what the pixel's samples show so far, at positions 0..1 each way. Nothing
    /// unless they show two colours that a line can keep apart.
    static std::optional<EdgeSearch> begin(std::span<const Imath::V2d> positions,
                                           std::span<const Pixel8> encoded);

    /// Lets a sample that begin() knew count for the colour of its side.
    void addColor(const Radiance& radiance);

    /// All of them are to be looked at.
    Positions nextPositions();

    /// What shows at one of the positions. False when it does not fit: there is more
    /// to the pixel than two colours and a straight edge.
    bool add(const Imath::V2d& position, const Radiance& radiance);

    /// Whether more samples would hardly change the pixel.
    bool isDone() const;

    /// Once it is: the pixel, scene-linear RGB, premultiplied, and alpha.
    std::array<float, 4> pixel() const;

  private:
    struct Side {
        Pixel8 encoded{};  ///< of its first sample
        Accumulator sum;   ///< of those whose colour counts
        int count = 0;
    };

    EdgeSearch(const std::array<Side, 2>& sides, const StraightEdge& edge, std::uint8_t corners)
        : sides_(sides), edge_(edge), corners_(corners) {}
    std::optional<std::size_t> sideOf(const Radiance& radiance) const;
    void addColor(std::size_t side, const Radiance& radiance);

    std::array<Side, 2> sides_;  ///< the near one, the far one
    StraightEdge edge_;
    std::uint8_t corners_;  ///< that are yet to be looked at, a bit for each
};

}  // namespace tavora::studio
