#include "studio/util/portable_math.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>

namespace tavora::studio::portable {
namespace {

/// By Halley's method. The start divides the exponent, as a whole number of the
/// bits, by N: within some percent of the root.
template <unsigned N>
double rootOf(double x) {
    constexpr std::uint64_t kOne = std::bit_cast<std::uint64_t>(1.0);
    constexpr int kSteps = 3;  // each leaves about the cube of the error
    constexpr double kLarge = 1e300;
    if (!(x > 0)) return 0;
    if (x == std::numeric_limits<double>::infinity()) return x;
    if (x > kLarge) return 2 * rootOf<N>(x / (1U << N));
    double root = std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) / N + (kOne - kOne / N));
    for (int step = 0; step < kSteps; ++step) {
        double power = root;
        for (unsigned i = 1; i < N; ++i)
            power *= root;
        root += root * (2 * (x - power) / ((N + 1) * power + (N - 1) * x));
    }
    return root;
}

/// A polynomial by Horner's rule, the coefficient of the highest power first.
template <std::size_t N>
double polynomial(const std::array<double, N>& coefficients, double x) {
    double sum = 0;
    for (const double coefficient : coefficients)
        sum = sum * x + coefficient;
    return sum;
}

/// Taylor's series up to an eighth of a turn.
double sinNearZero(double x) {
    constexpr std::array kSeries = {1.0 / 355687428096000,
                                    -1.0 / 1307674368000,
                                    1.0 / 6227020800,
                                    -1.0 / 39916800,
                                    1.0 / 362880,
                                    -1.0 / 5040,
                                    1.0 / 120,
                                    -1.0 / 6,
                                    1.0};
    return x * polynomial(kSeries, x * x);
}

double cosNearZero(double x) {
    constexpr std::array kSeries = {1.0 / 20922789888000,
                                    -1.0 / 87178291200,
                                    1.0 / 479001600,
                                    -1.0 / 3628800,
                                    1.0 / 40320,
                                    -1.0 / 720,
                                    1.0 / 24,
                                    -1.0 / 2,
                                    1.0};
    return polynomial(kSeries, x * x);
}

/// Beyond, whole turns are dropped first, and places lost.
constexpr double kLargest = 1e6;

/// The sine of an angle that many quarter turns further.
double sinAfterQuarters(double angle, int quarters) {
    constexpr double kQuarter = std::numbers::pi / 2;
    // The same in two parts, of which the first leaves room for exact products.
    constexpr double kCoarse = 1686629713.0 / (1 << 30);
    constexpr double kFine = 6.0771005065061922e-11;
    if (!(std::abs(angle) < kLargest)) angle = std::fmod(angle, 4 * kQuarter);
    if (!std::isfinite(angle)) return std::numeric_limits<double>::quiet_NaN();
    const double turned = std::nearbyint(angle / kQuarter);
    const double rest = (angle - turned * kCoarse) - turned * kFine;
    switch ((static_cast<std::int64_t>(turned) + quarters) & 3) {
        case 0:
            return sinNearZero(rest);
        case 1:
            return cosNearZero(rest);
        case 2:
            return -sinNearZero(rest);
        default:
            return -cosNearZero(rest);
    }
}

}  // namespace

double cubeRoot(double x) {
    return rootOf<3>(x);
}

double fifthRoot(double x) {
    return rootOf<5>(x);
}

double log2(double x) {
    int exponent = 0;
    double mantissa = std::frexp(x, &exponent);
    if (mantissa < std::numbers::sqrt2 / 2) {
        mantissa *= 2;
        --exponent;
    }
    // ln m = 2 artanh((m - 1) / (m + 1)), the argument below 0.172.
    constexpr std::array kSeries = {1.0 / 21, 1.0 / 19, 1.0 / 17, 1.0 / 15, 1.0 / 13, 1.0 / 11,
                                    1.0 / 9,  1.0 / 7,  1.0 / 5,  1.0 / 3,  1.0};
    const double ratio = (mantissa - 1) / (mantissa + 1);
    return exponent + 2 * std::numbers::log2e * ratio * polynomial(kSeries, ratio * ratio);
}

double exp2(double x) {
    const double whole = std::nearbyint(x);
    // e^y, y within 0.347.
    constexpr std::array kSeries = {1.0 / 6227020800,
                                    1.0 / 479001600,
                                    1.0 / 39916800,
                                    1.0 / 3628800,
                                    1.0 / 362880,
                                    1.0 / 40320,
                                    1.0 / 5040,
                                    1.0 / 720,
                                    1.0 / 120,
                                    1.0 / 24,
                                    1.0 / 6,
                                    1.0 / 2,
                                    1.0,
                                    1.0};
    const double y = (x - whole) * std::numbers::ln2;
    return std::ldexp(polynomial(kSeries, y), static_cast<int>(whole));
}

double power(double x, unsigned n) {
    double result = 1;
    for (double square = x; n != 0; n >>= 1U, square *= square) {
        if ((n & 1U) != 0) result *= square;
    }
    return result;
}

double sin(double angle) {
    return sinAfterQuarters(angle, 0);
}

double cos(double angle) {
    return sinAfterQuarters(angle, 1);
}

double tan(double angle) {
    return sin(angle) / cos(angle);
}

/// Abramowitz and Stegun, Handbook of Mathematical Functions, 4.4.46.
double arcCosine(double x) {
    constexpr std::array kSeries = {-0.0012624911, 0.0066700901, -0.0170881256, 0.0308918810,
                                    -0.0501743046, 0.0889789874, -0.2145988016, 1.5707963050};
    const double size = std::min(std::abs(x), 1.0);
    const double angle = std::sqrt(1 - size) * polynomial(kSeries, size);
    return x < 0 ? std::numbers::pi - angle : angle;
}

}  // namespace tavora::studio::portable
