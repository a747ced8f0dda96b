// Ink-over, and what textures get to know of a point.

#include <algorithm>

#include "shading/channel_alpha.h"
#include "shading/ink_over.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap.h"

namespace tavora::testing {
namespace {

const Vec surface = {0.5, 0.25, 1.0}, paint = {0.25, 0.5, 0.75};

struct InkOver : ::testing::Test {
    InkOver() {
        std::copy(paint.begin(), paint.end(), record->inkoverPaintColor);
        sample.objectId = own;
        sample.raySource[0] = 3.0;
        sample.worldPosition[1] = 1.0;
        host.onTrace = [this](const double* from, const double* along, HostSample* hit) {
            EXPECT_EQ(Vec({from[0], from[1], from[2]}), (Vec{0, 1, 0}));
            EXPECT_EQ(Vec({along[0], along[1], along[2]}), (Vec{-0.6, -0.8, 0}));
            std::copy(hitColor.begin(), hitColor.end(), hit->color);
            if (host.log.size() == inkAt) hit->color[0] = 0.0;
            hit->objectId = hitObject;
            return distance;
        };
    }
    Vec draw(double hitDistance = 1.0) {
        distance = hitDistance;
        std::copy(surface.begin(), surface.end(), sample.color);
        host.log.clear();
        drawInkOver(record.get(), &sample);
        return colorOf(sample);
    }

    const HostItemId own = identity<HostItemId>(8);
    FakeHost host;
    Record record = newRecord(identity<HostSurfaceId>(16));
    HostSample sample = upwardSample();
    double distance = 2.0;
    Vec hitColor = {0, 0, 0};
    HostItemId hitObject = own;
    std::size_t inkAt = 100;  ///< the trace that finds no red, counted from 1
};

TEST_F(InkOver, PaintsWhereExactlyTheInkLiesBehind) {
    EXPECT_EQ(draw(least), paint);
    for (const double missed : {0.0, -1.0, nan})
        EXPECT_EQ(draw(missed), surface) << missed;
    hitObject = nullptr;
    EXPECT_EQ(draw(), surface) << "another object";
    record->inkoverObject = 0;
    EXPECT_EQ(draw(), paint);
    for (double& channel : hitColor) {
        channel = least;
        EXPECT_EQ(draw(), surface);
        channel = 0.0;
    }
    std::fill_n(record->inkoverColor, 3, 0.1f);
    hitColor = {0.1, 0.1, 0.1};
    EXPECT_EQ(draw(), surface) << "the setting is a single";
    hitColor.fill(static_cast<double>(0.1f));
    EXPECT_EQ(draw(), paint);
}

TEST_F(InkOver, TracesTheSameRayUpToItsDepthOrTheFirstMatch) {
    hitColor = {1, 0, 0};
    inkAt = 4;
    const struct {
        int depth;
        const char* log;
        Vec color;
    } cases[] = {{-5, "", surface}, {0, "", surface}, {3, "ttt", surface}, {9, "tttt", paint}};
    for (const auto& c : cases) {
        record->maxTraceDepth = c.depth;
        EXPECT_EQ(draw(), c.color) << c.depth;
        EXPECT_EQ(host.log, c.log);
    }
    const AllocationWatch noMemory(0);
    EXPECT_EQ(draw(), surface);
    EXPECT_EQ(host.log, "");
}

TEST_F(InkOver, SeeThroughBlendsByTheTextureAtTheHit) {
    record->inkoverTranslucent = 1;
    record->maxTraceDepth = 0;
    hitObject = nullptr;
    hitColor = {1, 1, 0};
    EXPECT_EQ(draw(), surface) << "no translucency texture";
    host.channelAlpha = {{"Translucency", 0.25}};
    const Vec blended = {0.625, 0.4375, 0.75};
    EXPECT_EQ(draw(), blended);
    EXPECT_EQ(host.log, "tp");
    EXPECT_EQ(host.texturePoint.objectId, nullptr) << "evaluated where the ray hit";
    EXPECT_EQ(draw(0.0), blended) << "no distance is a hit here";
    for (const double missed : {-least, nan})
        EXPECT_EQ(draw(missed), surface) << missed;
    host.channelAlpha = {{"Translucency", 0.0}};
    hitColor.fill(nan);
    EXPECT_EQ(draw(), surface) << "nothing shows, so nothing is blended";
}

TEST(ChannelAlpha, DescribesThePointToTheTextureOfTheRecordsSurface) {
    FakeHost host;
    const Record record = newRecord(identity<HostSurfaceId>(77));
    std::mt19937 random;
    HostSample sample;
    scramble(&sample, sizeof sample, random);
    for (int i = 0; i < 3; ++i)
        sample.worldPosition[i] = sample.raySource[i] = 0.5;
    sample.raySource[1] = -1.5;  // the ray comes along (0, 2, 0)

    EXPECT_EQ(cb_getCOLRApha(record.get(), &sample), 0.0) << "no texture";
    host.channelAlpha = {{"BaseColor", -0.5}, {"Translucency", 7.0}};
    EXPECT_EQ(cb_getTRANSLUCENTalpha(record.get(), &sample), 7.0) << "not clamped";
    EXPECT_EQ(cb_getCOLRApha(record.get(), &sample), -0.5);
    EXPECT_EQ(host.textureSurface, record->context);
    const HostTexturePoint& point = host.texturePoint;
// clang-format off
#define SAME(field) EXPECT_EQ(bytesOf(point.field), bytesOf(sample.field))
    SAME(objectPosition); SAME(worldPosition); SAME(geometricNormal); SAME(worldNormal);
    SAME(bumpHeight); SAME(spotSize); SAME(raySource); SAME(rayLength); SAME(cosine);
    SAME(objectTransform); SAME(worldTransform); SAME(objectId); SAME(vertexIds);
    SAME(vertexWeights); SAME(vertexPositions); SAME(polygonNumber); SAME(polygonId);
// clang-format on
#undef SAME
    EXPECT_EQ(bytesOf(point.objectScale), bytesOf(layerScale));
    EXPECT_EQ(bytesOf(point.rayDirection), bytesOf(Vec{0, 1, 0}));
    EXPECT_EQ(point.surfaceId, record->context);
    EXPECT_TRUE(point.textureValue == 0.0 && point.context == 0);

    record->context = nullptr;
    host.log.clear();
    EXPECT_EQ(cb_getCOLRApha(record.get(), &sample), 0.0);
    EXPECT_EQ(host.log, "");
}

}  // namespace
}  // namespace tavora::testing
