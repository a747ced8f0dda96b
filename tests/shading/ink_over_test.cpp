#include "shading/ink_over.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/support/allocations.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const Vec surface = {0.5, 0.25, 1.0}, paint = {0.25, 0.5, 0.75};

class InkOver : public ::testing::Test {
  protected:
    InkOver() {
        std::copy(paint.begin(), paint.end(), record->inkoverPaintColor);
        sample.objectId = own;
        host.onTrace = [this](const double*, const double*, HostSample* hit) {
            std::copy(hitColor.begin(), hitColor.end(), hit->color);
            hit->objectId = hitObject;
            return distance;
        };
    }
    Vec draw() {
        std::copy(surface.begin(), surface.end(), sample.color);
        drawInkOver(record.get(), &sample);
        return colorOf(sample);
    }

    static inline const HostItemId own = identity<HostItemId>(8);
    FakeHost host;
    Record record = newRecord(identity<HostSurfaceId>(16));
    HostSample sample = upwardSample(surface);
    double distance = 2.0;
    Vec hitColor = {0, 0, 0};
    HostItemId hitObject = own;
};

TEST_F(InkOver, PaintsWhereTheInkLiesBehind) {
    EXPECT_EQ(draw(), paint);
    hitColor = {0, 0, std::numeric_limits<double>::denorm_min()};
    EXPECT_EQ(draw(), surface);
    // The setting is a single: 0.1 of a double is another colour.
    for (float& channel : record->inkoverColor)
        channel = 0.1f;
    hitColor = {0.1, 0.1, 0.1};
    EXPECT_EQ(draw(), surface);
    hitColor.fill(static_cast<double>(0.1f));
    EXPECT_EQ(draw(), paint);
}

TEST_F(InkOver, CountsHitsAheadOnTheOwnObject) {
    for (const double missed : {0.0, -1.0, nan}) {
        distance = missed;
        EXPECT_EQ(draw(), surface) << missed;
    }
    distance = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(draw(), paint);
    hitObject = identity<HostItemId>(9);
    EXPECT_EQ(draw(), surface);
    record->inkoverObject = 0;
    EXPECT_EQ(draw(), paint);
}

TEST_F(InkOver, TracesTheSameRayUpToItsDepthOrTheFirstMatch) {
    sample.raySource[0] = 3.0;
    sample.worldPosition[1] = 1.0;  // the ray comes along (-3, -4, 0)
    host.onTrace = [this](const double* from, const double* along, HostSample* hit) {
        EXPECT_EQ(Vec({from[0], from[1], from[2]}), (Vec{0, 1, 0}));
        EXPECT_EQ(Vec({along[0], along[1], along[2]}), (Vec{-0.6, -0.8, 0}));
        hit->objectId = own;
        hit->color[0] = host.traces == 4 ? 0.0 : 1.0;
        return 1.0;
    };
    const struct {
        int depth, traces;
        Vec color;
    } cases[] = {{-5, 0, surface}, {0, 0, surface}, {3, 3, surface}, {4, 4, paint}, {9, 4, paint}};
    for (const auto& c : cases) {
        host.traces = 0;
        record->maxTraceDepth = c.depth;
        EXPECT_EQ(draw(), c.color) << c.depth;
        EXPECT_EQ(host.traces, c.traces);
    }
}

TEST_F(InkOver, SeeThroughBlendsByTheTextureAtTheHit) {
    record->inkoverTranslucent = 1;
    record->maxTraceDepth = 0;
    hitObject = nullptr;
    hitColor = {1, 1, 0};
    EXPECT_EQ(draw(), surface) << "no translucency texture";
    host.channelAlpha = {{"Translucency", 0.25}};
    EXPECT_EQ(draw(), (Vec{0.625, 0.4375, 0.75}));
    EXPECT_EQ(host.textureSurface, record->context);
    EXPECT_EQ(host.texturePoint.objectId, nullptr) << "evaluated where the ray hit";
    distance = 0.0;
    EXPECT_EQ(draw(), (Vec{0.625, 0.4375, 0.75})) << "a hit at no distance counts here";
    host.channelAlpha = {{"Translucency", 0.0}};
    hitColor = {nan, nan, nan};
    EXPECT_EQ(draw(), surface) << "nothing shows, so nothing is blended";
    for (const double missed : {-1e-300, nan}) {
        distance = missed;
        EXPECT_EQ(draw(), surface);
    }
    EXPECT_EQ(host.traces, 6);
}

TEST_F(InkOver, WithoutMemoryTheSampleStays) {
    const AllocationWatch noMemory(0);
    drawInkOver(record.get(), &sample);
    EXPECT_EQ(noMemory.count(), 1);
    EXPECT_EQ(host.traces, 0);
    EXPECT_EQ(colorOf(sample), surface);
}

}  // namespace
}  // namespace tavora::testing
