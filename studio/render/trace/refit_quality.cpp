#include "studio/render/trace/refit_quality.h"

#include <ImathBox.h>
#include <algorithm>
#include <numeric>

namespace tavora::studio {
namespace {

using Imath::Box3f;
using Imath::V3f;

constexpr std::size_t kGroup = 32;
constexpr double kDegraded = 2;  // times the relative area at the start

double areaOf(const Box3f& box) {
    const V3f size = box.size();
    return static_cast<double>(size.x * size.y + size.y * size.z + size.z * size.x);
}

/// Ten bits, each followed by two zeros.
std::uint32_t spreadBits(std::uint32_t x) {
    x = (x | x << 16U) & 0x030000ffU;
    x = (x | x << 8U) & 0x0300f00fU;
    x = (x | x << 4U) & 0x030c30c3U;
    return (x | x << 2U) & 0x09249249U;
}

/// Where a point lies along a curve that fills a box (Morton's order).
std::uint32_t curvePlace(const V3f& point, const Box3f& box) {
    std::uint32_t code = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const float size = box.max[axis] - box.min[axis];
        const float fraction = size > 0 ? (point[axis] - box.min[axis]) / size : 0;
        const auto cell = static_cast<std::uint32_t>(std::clamp(fraction, 0.0F, 1.0F) * 1023.0F);
        code |= spreadBits(cell) << static_cast<unsigned>(axis);
    }
    return code;
}

}  // namespace

RefitQuality::RefitQuality(Triangles triangles, Vertices vertices) : order_(triangles.size()) {
    Box3f box;
    for (const V3f& vertex : vertices)
        box.extendBy(vertex);
    std::vector<std::uint32_t> places;
    places.reserve(triangles.size());
    for (const auto& [a, b, c] : triangles)
        places.push_back(curvePlace((vertices[a] + vertices[b] + vertices[c]) / 3.0F, box));
    std::iota(order_.begin(), order_.end(), 0U);
    std::stable_sort(order_.begin(), order_.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return places[a] < places[b]; });
    atStart_ = relativeArea(triangles, vertices);
}

double RefitQuality::relativeArea(Triangles triangles, Vertices vertices) const {
    Box3f whole;
    double sum = 0;
    for (std::size_t first = 0; first < order_.size(); first += kGroup) {
        Box3f box;
        const std::size_t last = std::min(first + kGroup, order_.size());
        for (std::size_t i = first; i < last; ++i) {
            for (const std::uint32_t corner : triangles[order_[i]])
                box.extendBy(vertices[corner]);
        }
        sum += areaOf(box);
        whole.extendBy(box);
    }
    const double area = areaOf(whole);
    return area > 0 ? sum / area : 0;
}

bool RefitQuality::isDegraded(Triangles triangles, Vertices vertices) const {
    return relativeArea(triangles, vertices) > kDegraded * atStart_;
}

}  // namespace tavora::studio
