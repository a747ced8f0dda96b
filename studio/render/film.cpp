#include "studio/render/film.h"

#include <utility>

#include "studio/scene/color.h"

namespace tavora::studio {
namespace {

Imath::V3d linear(const Sight& sight) {
    if (!(sight.alpha > 0)) return Imath::V3d(0);
    const Imath::V3d color = sight.color / sight.alpha;
    return Imath::V3d(toLinear(color.x), toLinear(color.y), toLinear(color.z)) * sight.alpha;
}

}  // namespace

void PixelSum::develop(int count, float rgba[4]) const {
    const Imath::V3d average = color / count;
    rgba[0] = static_cast<float>(average.x);
    rgba[1] = static_cast<float>(average.y);
    rgba[2] = static_cast<float>(average.z);
    rgba[3] = static_cast<float>(alpha / count);
}

void LightMeter::add(const Sight& sight, PixelSum& sum) {
    if (sight != last_.sight) {
        std::swap(last_, before_);
        if (sight != last_.sight) last_ = {sight, linear(sight)};
    }
    sum.color += last_.color;
    sum.alpha += sight.alpha;
}

}  // namespace tavora::studio
