#pragma once

#include <ImathVec.h>
#include <array>
#include <cstddef>
#include <span>

namespace tavora::studio {

/// Where a straight edge may run through a pixel: along any of the lines that
/// keep the samples seen on its two sides apart. Each sample cuts a part off the
/// convex set of these lines. Positions are in the pixel, 0..1 each way.
class StraightEdge {
  public:
    static constexpr std::size_t kProbes = 4;

    /// Between samples about `near` and samples about `far`, the means of their
    /// positions; where these are the same, no line will do. The edge runs within 45 degrees of
    /// upright to the way from one to the other.
    StraightEdge(const Imath::V2d& near, const Imath::V2d& far);

    /// A sample was seen. False when no line keeps all of them apart any more; it
    /// then tells nothing.
    bool add(const Imath::V2d& position, bool isFar);

    /// Fraction of the pixel on the far side, 0..1, by the middle of the lines.
    double coverage() const;

    /// How far the outermost lines lie apart where the middle one enters and leaves
    /// the pixel, on average, in pixels: by a part of it coverage() may be wrong.
    double uncertainty() const;

    /// Where samples tell most: there, two each, at a third and two thirds of the
    /// way from one outermost line to the other.
    std::array<Imath::V2d, kProbes> probes() const;

  private:
    /// height + slope * along, from the pixel's centre; `along` the line that is
    /// upright to `across_`.
    struct Line {
        double height;
        double slope;

        double at(double along) const { return height + slope * along; }
    };
    /// Where the middle line enters or leaves the pixel.
    struct End {
        double along;
        double least;  ///< heights of the outermost lines there
        double most;
    };
    /// Corners that the set may have. It seldom has ten; with more it is given up.
    static constexpr std::size_t kMost = 24;

    std::span<const Line> corners() const { return {corners_.data(), count_}; }
    Line middle() const;
    std::array<End, 2> ends() const;
    End endAt(double along) const;

    Imath::V2d across_;  ///< unit, from the near side to the far one
    Imath::V2d along_;   ///< unit
    std::array<Line, kMost> corners_;
    std::size_t count_ = 4;
};

}  // namespace tavora::studio
