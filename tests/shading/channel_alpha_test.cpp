#include "shading/channel_alpha.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

/// A sample with a different value in every byte's neighbourhood.
HostSample distinctSample() {
    HostSample sample = upwardSample();
    double value = 1.0;
    for (double* field :
         {sample.objectPosition, sample.worldPosition, sample.geometricNormal, sample.raySource,
          sample.worldNormal, &sample.objectTransform[0], &sample.objectTransform[3],
          &sample.objectTransform[6], &sample.worldTransform[0], &sample.worldTransform[3],
          &sample.worldTransform[6]}) {
        for (int i = 0; i < 3; ++i)
            field[i] = value += 0.5;
    }
    sample.spotSize = 101;
    sample.rayLength = 102;
    sample.cosine = 103;
    sample.bumpHeight = 104;
    sample.objectId = identity<HostItemId>(105);
    sample.polygonNumber = 106;
    sample.polygonId = identity<HostPolygonId>(107);
    for (unsigned i = 0; i < 4; ++i) {
        sample.vertexIds[i] = identity<HostPointId>(108 + i);
        sample.vertexWeights[i] = 112.0f + static_cast<float>(i);
        for (float& component : sample.vertexPositions[i])
            component = float(value += 0.5);
    }
    return sample;
}

TEST(ChannelAlpha, DescribesThePointToTheTexture) {
    FakeHost host;
    host.channelAlpha = {{"BaseColor", -0.5}, {"Translucency", 7.0}};
    Record record = newRecord(identity<HostSurfaceId>(77));
    HostSample sample = distinctSample();
    // The ray comes along (2, 0, 0) here.
    const double source[3] = {sample.worldPosition[0] - 2.0, sample.worldPosition[1],
                              sample.worldPosition[2]};
    std::copy(source, source + 3, sample.raySource);

    EXPECT_EQ(cb_getCOLRApha(record.get(), &sample), -0.5) << "not clamped";
    EXPECT_EQ(host.textureSurface, record->context);
    const HostTexturePoint& point = host.texturePoint;
    EXPECT_EQ(bytesOf(point.objectPosition), bytesOf(sample.objectPosition));
    EXPECT_EQ(bytesOf(point.worldPosition), bytesOf(sample.worldPosition));
    EXPECT_EQ(bytesOf(point.geometricNormal), bytesOf(sample.geometricNormal));
    EXPECT_EQ(bytesOf(point.worldNormal), bytesOf(sample.worldNormal));
    EXPECT_EQ(bytesOf(point.raySource), bytesOf(sample.raySource));
    EXPECT_EQ(bytesOf(point.objectTransform), bytesOf(sample.objectTransform));
    EXPECT_EQ(bytesOf(point.worldTransform), bytesOf(sample.worldTransform));
    EXPECT_EQ(bytesOf(point.vertexIds), bytesOf(sample.vertexIds));
    EXPECT_EQ(bytesOf(point.vertexWeights), bytesOf(sample.vertexWeights));
    EXPECT_EQ(bytesOf(point.vertexPositions), bytesOf(sample.vertexPositions));
    EXPECT_TRUE(std::equal(layerScale.begin(), layerScale.end(), point.objectScale));
    EXPECT_EQ(Vec({point.rayDirection[0], point.rayDirection[1], point.rayDirection[2]}),
              (Vec{1, 0, 0}));
    EXPECT_EQ(point.bumpHeight, 104);
    EXPECT_EQ(point.textureValue, 0.0);
    EXPECT_EQ(point.spotSize, 101);
    EXPECT_EQ(point.rayLength, 102);
    EXPECT_EQ(point.cosine, 103);
    EXPECT_EQ(point.objectId, sample.objectId);
    EXPECT_EQ(point.surfaceId, record->context);
    EXPECT_EQ(point.polygonNumber, 106);
    EXPECT_EQ(point.polygonId, sample.polygonId);
    EXPECT_EQ(point.context, 0);

    EXPECT_EQ(cb_getTRANSLUCENTalpha(record.get(), &sample), 7.0);
}

TEST(ChannelAlpha, IsZeroWithoutSurfaceOrTexture) {
    FakeHost host;
    const HostSample sample = upwardSample();
    Record record = newRecord(identity<HostSurfaceId>(77));
    EXPECT_EQ(cb_getCOLRApha(record.get(), &sample), 0.0);
    host.channelAlpha = {{"BaseColor", 0.5}, {"Translucency", 0.5}};
    record->context = nullptr;
    EXPECT_EQ(cb_getCOLRApha(record.get(), &sample), 0.0);
    EXPECT_EQ(cb_getTRANSLUCENTalpha(record.get(), &sample), 0.0);
    EXPECT_EQ(host.layerQueries, 0);
}

}  // namespace
}  // namespace tavora::testing
