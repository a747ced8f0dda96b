#include "studio/render/sampling/pixel_filter.h"

#include <cmath>
#include <numbers>

#include "studio/util/deterministic_math.h"

namespace tavora::studio {
namespace {

constexpr double kBellRadius = 1.5;  // pixels

/// Fraction of the bell's weight left of `x`, with `x` 0..1 across its width: the
/// integral of the Blackman-Harris window. The coefficients are its own.
double bellUpTo(double x) {
    const double turn = 2 * std::numbers::pi;
    const double sum = 0.35875 * x - 0.48829 / turn * deterministic::sin(turn * x) +
                       0.14128 / (2 * turn) * deterministic::sin(2 * turn * x) -
                       0.01168 / (3 * turn) * deterministic::sin(3 * turn * x);
    return sum / 0.35875;
}

/// Where bellUpTo() is `fraction`.
double bellPlace(double fraction) {
    double low = 0;
    double high = 1;
    for (int step = 0; step < 40; ++step) {
        const double middle = (low + high) / 2;
        (bellUpTo(middle) < fraction ? low : high) = middle;
    }
    return (low + high) / 2;
}

/// From -1 to 1 as the weights of a tent are.
double tentPlace(double fraction) {
    return fraction < 0.5 ? std::sqrt(2 * fraction) - 1 : 1 - std::sqrt(2 - 2 * fraction);
}

double spread(PixelFilter filter, double fraction) {
    switch (filter) {
        case PixelFilter::Tent:
            return 0.5 + tentPlace(fraction);
        case PixelFilter::BlackmanHarris:
            return 0.5 + kBellRadius * (2 * bellPlace(fraction) - 1);
        default:
            return fraction;
    }
}

}  // namespace

Imath::V2d spreadAsFilter(PixelFilter filter, const Imath::V2d& position) {
    return {spread(filter, position.x), spread(filter, position.y)};
}

}  // namespace tavora::studio
