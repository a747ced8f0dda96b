#include "studio/render/film.h"

#include "studio/scene/color.h"

namespace tavora::studio {
namespace {

Imath::V3d linear(const Sight& sight) {
    if (!(sight.alpha > 0)) return Imath::V3d(0);
    const Imath::V3d color = sight.color / sight.alpha;
    return Imath::V3d(toLinear(color.x), toLinear(color.y), toLinear(color.z)) * sight.alpha;
}

}  // namespace

void PixelFilm::add(const Sight& sight) {
    if (sight.color != last_.color || sight.alpha != last_.alpha) {
        last_ = sight;
        lastLinear_ = linear(sight);
    }
    color_ += lastLinear_;
    alpha_ += sight.alpha;
    ++count_;
}

void PixelFilm::develop(float rgba[4]) {
    const Imath::V3d color = color_ / count_;
    rgba[0] = static_cast<float>(color.x);
    rgba[1] = static_cast<float>(color.y);
    rgba[2] = static_cast<float>(color.z);
    rgba[3] = static_cast<float>(alpha_ / count_);
    color_ = Imath::V3d(0);
    alpha_ = 0;
    count_ = 0;
}

}  // namespace tavora::studio
