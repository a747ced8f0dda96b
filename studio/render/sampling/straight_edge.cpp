#include "studio/render/sampling/straight_edge.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

const Imath::V2d kCentre(0.5, 0.5);

/// Part of the pixel beyond a line, `height` from the centre along its unit normal.
double shareBeyond(const Imath::V2d& normal, double height) {
    const double large = std::max(std::abs(normal.x), std::abs(normal.y));
    const double small = std::min(std::abs(normal.x), std::abs(normal.y));
    const double outer = (large + small) / 2;  // where the last corner lies
    const double inner = (large - small) / 2;  // and the one before
    const double distance = std::abs(height);
    double smaller = 0;
    if (distance <= inner) {
        smaller = 0.5 - distance / large;
    } else if (distance < outer) {
        smaller = (outer - distance) * (outer - distance) / (2 * large * small);
    }
    return height > 0 ? smaller : 1 - smaller;
}

}  // namespace

StraightEdge::StraightEdge(const Imath::V2d& near, const Imath::V2d& far)
    : across_((far - near).normalized()),
      along_(-across_.y, across_.x),
      corners_({Line{-1, -1}, Line{1, -1}, Line{1, 1}, Line{-1, 1}}) {}

/// Sutherland and Hodgman, "Reentrant Polygon Clipping" (1974).
bool StraightEdge::add(const Imath::V2d& position, bool isFar) {
    const Imath::V2d from = position - kCentre;
    const double along = along_.dot(from);
    const double across = across_.dot(from);
    const auto fits = [&](const Line& line) {  // above 0: it does
        return isFar ? across - line.at(along) : line.at(along) - across;
    };
    std::array<Line, kMost> kept;
    std::size_t count = 0;
    double before = fits(corners_[count_ - 1]);
    for (std::size_t i = 0; i < count_; ++i) {
        if (count + 2 > kMost) return false;
        const Line& corner = corners_[i];
        const Line& last = corners_[(i + count_ - 1) % count_];
        const double here = fits(corner);
        if ((here > 0) != (before > 0)) {
            const double fraction = before / (before - here);
            kept[count++] = {last.height + fraction * (corner.height - last.height),
                             last.slope + fraction * (corner.slope - last.slope)};
        }
        if (here > 0) kept[count++] = corner;
        before = here;
    }
    std::copy_n(kept.begin(), count, corners_.begin());
    count_ = count;
    return count >= 3;
}

/// The set's centroid.
StraightEdge::Line StraightEdge::middle() const {
    const Line& first = corners_[0];
    Line sum{0, 0};
    double weight = 0;
    for (std::size_t i = 2; i < count_; ++i) {
        const Line& a = corners_[i - 1];
        const Line& b = corners_[i];
        const double area = (a.height - first.height) * (b.slope - first.slope) -
                            (b.height - first.height) * (a.slope - first.slope);
        sum.height += area * (first.height + a.height + b.height) / 3;
        sum.slope += area * (first.slope + a.slope + b.slope) / 3;
        weight += area;
    }
    return weight > 0 ? Line{sum.height / weight, sum.slope / weight} : first;
}

double StraightEdge::coverage() const {
    const Line line = middle();
    const double length = std::sqrt(1 + line.slope * line.slope);
    return shareBeyond((across_ - along_ * line.slope) / length, line.height / length);
}

StraightEdge::End StraightEdge::endAt(double along) const {
    End end{along, corners_[0].at(along), corners_[0].at(along)};
    for (const Line& corner : corners()) {
        end.least = std::min(end.least, corner.at(along));
        end.most = std::max(end.most, corner.at(along));
    }
    return end;
}

std::array<StraightEdge::End, 2> StraightEdge::ends() const {
    const Line line = middle();
    const Imath::V2d start = across_ * line.height;
    const Imath::V2d way = along_ + across_ * line.slope;
    double enters = -1;
    double leaves = 1;
    for (int axis = 0; axis < 2; ++axis) {
        if (way[axis] == 0) continue;
        const double low = (-0.5 - start[axis]) / way[axis];
        const double high = (0.5 - start[axis]) / way[axis];
        enters = std::max(enters, std::min(low, high));
        leaves = std::min(leaves, std::max(low, high));
    }
    // It may just miss a corner.
    if (enters > leaves) enters = leaves = (enters + leaves) / 2;
    return {endAt(enters), endAt(leaves)};
}

double StraightEdge::uncertainty() const {
    const auto [first, second] = ends();
    return (first.most - first.least + second.most - second.least) / 2;
}

std::array<Imath::V2d, StraightEdge::kProbes> StraightEdge::probes() const {
    std::array<Imath::V2d, kProbes> positions;
    std::size_t next = 0;
    for (const End& end : ends()) {
        for (const double fraction : {1.0 / 3, 2.0 / 3}) {
            const double height = end.least + fraction * (end.most - end.least);
            const Imath::V2d position = kCentre + along_ * end.along + across_ * height;
            positions[next++] = {std::clamp(position.x, 0.0, 1.0),
                                 std::clamp(position.y, 0.0, 1.0)};
        }
    }
    return positions;
}

}  // namespace tavora::studio
