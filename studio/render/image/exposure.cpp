#include "studio/render/image/exposure.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "studio/render/image/accumulator.h"

namespace tavora::studio {
namespace {

/// The digits of a number in base 3, mirrored at the point.
double mirrored(int value) {
    double result = 0;
    for (double place = 1.0 / 3; value > 0; value /= 3, place /= 3)
        result += place * (value % 3);
    return result;
}

}  // namespace

std::vector<double> shutterTimes(int samples) {
    const auto count = static_cast<std::size_t>(std::max(samples, 1));
    std::vector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [](int a, int b) { return mirrored(a) < mirrored(b); });
    std::vector<double> times(count);
    for (std::size_t rank = 0; rank < count; ++rank) {
        times[static_cast<std::size_t>(order[rank])] =
            (static_cast<double>(rank) + 0.5) / static_cast<double>(count);
    }
    return times;
}

void Exposure::add(const Picture& picture) {
    if (count_++ == 0) {
        first_ = picture;
        sums_.assign(picture.rgba.begin(), picture.rgba.end());
        return;
    }
    for (std::size_t i = 0; i < sums_.size(); ++i)
        sums_[i] += static_cast<double>(picture.rgba[i]);
}

Picture Exposure::resolve(const std::optional<Imath::V3d>& background) const {
    Picture picture = first_;
    std::transform(sums_.begin(), sums_.end(), picture.rgba.begin(),
                   [this](double sum) { return static_cast<float>(sum / count_); });
    const Background behind(background);
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
        behind.compositeUnder(&picture.rgba[i]);
    return picture;
}

}  // namespace tavora::studio
