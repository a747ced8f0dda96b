#include "shading/vector_math.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/support/single.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(VectorMath, NormalizeDividesByAnyLengthAboveZero) {
    double v[3] = {3, 0, 4};
    normalize(v);
    EXPECT_EQ(v[0], 0.6);
    EXPECT_EQ(v[2], 0.8);
    double tiny[3] = {0, 1e-160, 0};  // its square still counts
    normalize(tiny);
    EXPECT_NEAR(tiny[1], 1.0, 1e-3);
    double zero[3] = {0, -0.0, 0};
    normalize(zero);
    EXPECT_EQ(zero[1], 0.0);
    double odd[3] = {nan, 2, 0};
    normalize(odd);
    EXPECT_EQ(odd[1], 2.0);
    // A quotient, not a product with the reciprocal.
    double third[3] = {5, 0, 0}, sum[3] = {0.1, 0.7, 0.49};
    normalize(third);
    EXPECT_EQ(third[0], 1.0);
    const double length = dlen(sum);
    normalize(sum);
    EXPECT_EQ(sum[2], 0.49 / length);
}

TEST(VectorMath, LengthsAndProducts) {
    const double a[3] = {1, 2, 3}, b[3] = {4, -5, 6}, origin[3] = {0, 0, 0}, one[3] = {1, 1, 1};
    EXPECT_EQ(ddot(a, b), 12.0);
    // Summed from x to z: the large terms cancel before the small one counts.
    const double big[3] = {1e17, -1e17, 1}, ones[3] = {1, 1, 1};
    EXPECT_EQ(ddot(big, ones), 1.0);
    double difference[3];
    dsub(a, b, difference);
    EXPECT_EQ(difference[1], 7.0);
    EXPECT_EQ(dlenSquared(b), 77.0);
    EXPECT_EQ(ddist(origin, one), single(std::sqrt(3.0)));
    EXPECT_NE(ddist(origin, one), std::sqrt(3.0));
}

TEST(VectorMath, SmoothstepTestsTheLowerEdgeFirst) {
    EXPECT_DOUBLE_EQ(smoothstep(0.2, 0.6, 0.4), 0.5);
    EXPECT_EQ(smoothstep(0.2, 0.6, 0.2), 0.0);
    EXPECT_EQ(smoothstep(0.2, 0.6, 0.6), 1.0);
    EXPECT_EQ(smoothstep(0.5, 0.5, 0.5), 1.0);
    EXPECT_EQ(smoothstep(0.5, 0.5, std::nextafter(0.5, 0.0)), 0.0);
    EXPECT_EQ(smoothstep(0.6, 0.2, 0.4), 0.0);
    EXPECT_TRUE(std::isnan(smoothstep(0.0, 1.0, nan)));
    EXPECT_NEAR(smoothstep(0.0, 1.0, 0.25) + smoothstep(0.0, 1.0, 0.75), 1.0, 1e-15);
}

TEST(VectorMath, SaturateRoundsItsProductsToSingle) {
    EXPECT_EQ(saturate(1.0f, 1.0f, 0.0f, 0.0f, 0.0f), single(1.0 / 3.0));
    EXPECT_EQ(saturate(0.3f, 0.1f, 0.3f, 0.9f, 1.0f), static_cast<double>(0.3f));
    Values values(10);
    for (int round = 0; round < 100; ++round) {
        const float r = values.fraction(), g = values.fraction(), b = values.fraction(),
                    s = values.fraction();
        const double mean = single(single(single(static_cast<double>(r) + g) + b) / 3.0);
        EXPECT_EQ(saturate(g, r, g, b, s),
                  mean * single(1.0 - s) + single(static_cast<double>(s) * g));
    }
}

}  // namespace
}  // namespace tavora::testing
