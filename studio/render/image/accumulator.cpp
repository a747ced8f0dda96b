#include "studio/render/image/accumulator.h"

#include "studio/util/color.h"

namespace tavora::studio {

void Accumulator::resolve(int count, float rgba[4]) const {
    const Imath::V3d average = color / count;
    rgba[0] = static_cast<float>(average.x);
    rgba[1] = static_cast<float>(average.y);
    rgba[2] = static_cast<float>(average.z);
    rgba[3] = static_cast<float>(alpha / count);
}

Background::Background(const std::optional<Imath::V3d>& color) {
    if (color) light_.emplace(toLinear(color->x), toLinear(color->y), toLinear(color->z));
}

void Background::compositeUnder(float rgba[4]) const {
    if (!light_) return;
    const double through = 1 - static_cast<double>(rgba[3]);
    for (int i = 0; i < 3; ++i)
        rgba[i] = static_cast<float>(static_cast<double>(rgba[i]) + through * (*light_)[i]);
    rgba[3] = 1;
}

}  // namespace tavora::studio
