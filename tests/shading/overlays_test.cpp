#include "shading/overlays.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/support/fake_host.h"
#include "tests/support/single.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const Vec surface = {0.5, 0.25, 1.0};

struct SlopeCase {
    ShaderInstance settings;
    double slope;

    Vec paint() const {
        HostSample sample = upwardSample(surface);
        sample.worldNormal[1] = 2.0 * slope - 1.0;
        applySlope(settings, sample);
        return colorOf(sample);
    }
    /// `tint` over the surface by `opacity`, in double.
    static double over(unsigned channel, double tint, double opacity) {
        return (1.0 - opacity) * surface[channel] + opacity * tint;
    }
};

TEST(Slope, StepSplitsAtTheCentre) {
    SlopeCase c{{}, 0.75};
    c.settings.slopeStyle = 1;
    c.settings.slopeCenter = 0.75f;
    c.settings.slopeTopOpacity = 1.0f;
    c.settings.slopeBottomOpacity = 0.25f;
    EXPECT_EQ(c.paint(), (Vec{1, 1, 1}));
    for (const double slope : {std::nextafter(0.75, 0.0), 0.0, nan}) {
        c.slope = slope;
        EXPECT_EQ(c.paint(), (Vec{0.375, 0.1875, 0.75})) << slope;
    }
    Values values(13);
    for (int round = 0; round < 50; ++round) {
        const float opacity = values.fraction(), channel = values.fraction();
        c.slope = round % 2;
        (round % 2 ? c.settings.slopeTopOpacity : c.settings.slopeBottomOpacity) = opacity;
        (round % 2 ? c.settings.slopeTopColor : c.settings.slopeBottomColor)[1] = channel;
        const double o = opacity;
        EXPECT_EQ(c.paint()[1], single(1.0 - o) * surface[1] + single(o * channel));
    }
}

TEST(Slope, MixRunsFromBottomThroughTheMeanToTop) {
    Values values(14);
    for (int round = 0; round < 300; ++round) {
        SlopeCase c{{}, values.real()};
        ShaderInstance& s = c.settings;
        for (float* field : {&s.slopeTopColor[0], &s.slopeBottomColor[0], &s.slopeTopOpacity,
                             &s.slopeBottomOpacity}) {
            *field = values.fraction();
        }
        s.slopeCenter = values.fraction(0.25, 0.75);
        const double m = s.slopeCenter, t = s.slopeTopColor[0], b = s.slopeBottomColor[0],
                     p = s.slopeTopOpacity, q = s.slopeBottomOpacity;
        const double meanColor = single(t + b) / 2.0, meanOpacity = single(p + q) / 2.0;
        // The slope that the overlay gets to see went through the normal.
        const double v = 0.5 * (2.0 * c.slope - 1.0) + 0.5;
        const double u = v < m ? v / m : (v - m) / (1.0 - m);
        const double w = u * u * (3.0 - 2.0 * u);
        const double expected = v < m ? SlopeCase::over(0, b * (1.0 - w) + meanColor * w,
                                                        q * (1.0 - w) + meanOpacity * w)
                                      : SlopeCase::over(0, meanColor * (1.0 - w) + t * w,
                                                        meanOpacity * (1.0 - w) + p * w);
        EXPECT_EQ(c.paint()[0], expected);
    }
}

TEST(Slope, MixAtItsPointsAndBeyond) {
    SlopeCase c{{}, 0.5};
    const auto painted = [&](double slope, float center) {
        c.slope = slope;
        c.settings.slopeCenter = center;
        return c.paint()[0];
    };
    c.settings.slopeTopOpacity = 1.0f;
    EXPECT_EQ(painted(1.0, 0.5f), 1.0);
    EXPECT_EQ(painted(0.5, 0.5f), SlopeCase::over(0, 0.5, 0.75));
    EXPECT_EQ(painted(0.0, 0.5f), 0.25);
    EXPECT_EQ(painted(-0.5, 0.5f), 0.25) << "a normal longer than 1";
    EXPECT_EQ(painted(1.0, 1.0f), 1.0) << "no division at the centre";
    EXPECT_EQ(painted(0.0, 0.0f), SlopeCase::over(0, 0.5, 0.75));
    EXPECT_TRUE(std::isnan(painted(nan, 0.5f)));
    // Only the vertical component counts, as far as the others are numbers.
    HostSample sample = upwardSample(surface);
    sample.worldNormal[0] = 1e300;
    c.settings.slopeCenter = 0.5f;
    applySlope(c.settings, sample);
    EXPECT_EQ(sample.color[0], 1.0);
    sample.worldNormal[2] = std::numeric_limits<double>::infinity();
    applySlope(c.settings, sample);
    EXPECT_TRUE(std::isnan(sample.color[0]));
}

TEST(Edge, BandIsHardBelowAndSoftAbove) {
    ShaderInstance settings;
    const auto painted = [&](double cosine) {
        HostSample sample = upwardSample(surface);
        sample.cosine = cosine;
        applyEdge(settings, sample);
        return colorOf(sample);
    };
    const double low = 0.2f;
    EXPECT_EQ(painted(std::nextafter(low, 0.0)), (Vec{0, 0, 0}));
    EXPECT_EQ(painted(0.7), surface);
    EXPECT_TRUE(std::isnan(painted(nan)[0]));
    settings.edgeSharpness = 1.0f;
    EXPECT_EQ(painted(std::nextafter(low, 0.0)), (Vec{0, 0, 0}));
    EXPECT_EQ(painted(low), surface);

    Values values(15);
    for (int round = 0; round < 300; ++round) {
        const double a = settings.edgeCoverage = values.fraction(0.0, 0.5);
        const double b = settings.edgeSharpness = values.fraction(0.0, 0.5);
        const double c = settings.edgeColor[2] = values.fraction();
        // Coverage and sharpness meet in single precision.
        const double end = single(a + single(single(1.0 - a) * single(1.0 - b)));
        EXPECT_EQ(painted(end), surface);
        EXPECT_NE(painted(std::nextafter(end, 0.0) - 1e-7), surface);
        const double k = values.real(a, end);
        const double t = (k - a) / (end - a);
        const double w = t * t * (3.0 - 2.0 * t);
        EXPECT_EQ(painted(k)[2], w * surface[2] + (1.0 - w) * c);
    }
}

}  // namespace
}  // namespace tavora::testing
