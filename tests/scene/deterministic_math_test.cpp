// Functions that are the same on all processors, beside those of the C library.

#include "studio/util/deterministic_math.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>

#include "studio/util/color.h"

namespace tavora::studio {
namespace {

constexpr double kUlp = std::numeric_limits<double>::epsilon();

void expectNear(double ours, double theirs, double units, double x) {
    ASSERT_NEAR(ours, theirs, units * kUlp * std::abs(theirs)) << x;
}

TEST(DeterministicMath, AgreesWithTheLibraryToSomeUnitsInTheLastPlace) {
    std::mt19937_64 numbers(1);
    std::uniform_real_distribution<double> between(-1, 1);
    for (int i = 0; i < 100000; ++i) {
        const double part = between(numbers);
        const double positive = std::exp(40 * part);
        expectNear(deterministic::cubeRoot(positive), std::cbrt(positive), 3, positive);
        expectNear(deterministic::fifthRoot(positive), std::pow(positive, 0.2), 40, positive);
        expectNear(deterministic::exp2(1000 * part), std::exp2(1000 * part), 3, part);
        ASSERT_NEAR(deterministic::log2(positive), std::log2(positive), 64 * kUlp) << positive;
        expectNear(deterministic::power(1 + part / 8, 37), std::pow(1 + part / 8, 37), 60, part);
        const double angle = (i % 2 == 0 ? 100 : 1e6) * part;
        ASSERT_NEAR(deterministic::sin(angle), std::sin(angle), 2 * kUlp) << angle;
        ASSERT_NEAR(deterministic::cos(angle), std::cos(angle), 2 * kUlp) << angle;
        expectNear(deterministic::tan(part), std::tan(part), 4, part);
        expectNear(deterministic::arcCosine(part), std::acos(part), 4, part);
    }
    EXPECT_TRUE(deterministic::cubeRoot(27) == 3 && deterministic::cubeRoot(0) == 0);
    EXPECT_TRUE(deterministic::log2(0.0625) == -4 && deterministic::exp2(-3) == 0.125);
    EXPECT_TRUE(deterministic::fifthRoot(HUGE_VAL) == HUGE_VAL && deterministic::power(0, 0) == 1);
    // Beyond -1 and 1 lie cosines whose products were rounded.
    EXPECT_EQ(deterministic::arcCosine(1 + kUlp), 0);
    EXPECT_NEAR(deterministic::arcCosine(-1 - kUlp), std::numbers::pi, 4 * kUlp);
}

TEST(DeterministicMath, DisplayValuesComeBackFromLight) {
    EXPECT_TRUE(toLinear(1) == 1 && toEncoded(1) == 1);
    for (int level = 0; level <= 65535; ++level) {
        const double value = level / 65535.0;
        ASSERT_NEAR(toEncoded(toLinear(value)), value, 16 * kUlp);
        ASSERT_DOUBLE_EQ(toEncoded(-value), -toEncoded(value));
    }
    EXPECT_DOUBLE_EQ(toLinear(-0.04), -0.04 / 12.92);
    expectNear(toLinear(0.5), std::pow(0.555 / 1.055, 2.4), 8, 0.5);
    expectNear(toEncoded(12), 1.055 * std::pow(12, 1 / 2.4) - 0.055, 8, 12);
}

}  // namespace
}  // namespace tavora::studio
