#include "shading/highlight.h"

#include <cmath>
#include <gtest/gtest.h>

#include "plugin/services.h"
#include "shading/render_pass.h"
#include "tests/support/fake_host.h"
#include "tests/support/single.h"

namespace tavora::testing {
namespace {

const Vec surface = {0.25, 0.5, 0.75}, ring = {0, 0, 0}, disc = {1, 1, 1};

class Highlight : public ::testing::Test {
  protected:
    Highlight() {
        record->highlightEnable = 1;
        record->highlightOutlineEnable = 1;
        record->highlightSize = 0.0625f;
        record->highlightOutlineSize = 0.0625f;
        chooseLights(*record, {"Key"});
    }
    /// A light whose reflection meets the viewer at this cosine.
    static FakeLight lightAt(double cosine) {
        return {.direction = {std::sqrt(1.0 - cosine * cosine), -cosine, 0}};
    }
    Vec paint() {
        HostSample sample = upwardSample(surface);
        drawSpec(record.get(), &sample);
        EXPECT_EQ(record->lightCursor, nullptr);
        return colorOf(sample);
    }
    Vec paintAt(double cosine) {
        host.lights.assign(1, lightAt(cosine));
        return paint();
    }

    FakeHost host;
    Record record = newRecord();
};

TEST_F(Highlight, DiscAndRingMeetAtTheirBounds) {
    const float more = std::nextafter(0.0625f, 1.0f), less = std::nextafter(0.0625f, 0.0f);
    EXPECT_EQ(paintAt(0.96875), disc);
    EXPECT_EQ(paintAt(0.9375), ring) << "1 - size belongs to the ring";
    record->highlightSize = more;
    EXPECT_EQ(paintAt(0.9375), disc);
    record->highlightSize = 0.0625f;
    EXPECT_EQ(paintAt(0.875), ring) << "1 - (outline + size) still does";
    // In single precision this sum would round back to 0.125.
    record->highlightOutlineSize = less;
    EXPECT_EQ(paintAt(0.875), surface);
    EXPECT_EQ(paintAt(1.0), surface) << "a full reflection makes no disc";
    EXPECT_EQ(paintAt(0.5), surface);
    EXPECT_EQ(paintAt(-0.96875), surface);
}

TEST_F(Highlight, EachHalfWorksWithoutTheOther) {
    record->highlightEnable = 0;
    EXPECT_EQ(paintAt(0.96875), surface);
    EXPECT_EQ(paintAt(0.9), ring);
    record->highlightEnable = 1;
    record->highlightOutlineEnable = 0;
    EXPECT_EQ(paintAt(0.9), surface);
    EXPECT_EQ(paintAt(0.96875), disc);
}

TEST_F(Highlight, PaintsStartFromTheColourAtEntry) {
    record->highlightOpacity = 0.5f;
    record->highlightOutlineOpacity = 0.25f;
    host.lights = {lightAt(0.9), lightAt(0.96875)};
    EXPECT_EQ(paint(), (Vec{0.625, 0.75, 0.875}));
    std::swap(host.lights[0], host.lights[1]);
    EXPECT_EQ(paint(), (Vec{0.1875, 0.375, 0.5625}));
    // The order of choice comes before the order of the scene.
    host.lights[1].name = "Rim";
    chooseLights(*record, {"Rim", "Key"});
    EXPECT_EQ(paint(), (Vec{0.625, 0.75, 0.875}));
}

TEST_F(Highlight, RingsRoundTheirProductToSingleAndDiscsDoNot) {
    Values values(12);
    for (int round = 0; round < 50; ++round) {
        const float opacity = values.fraction(), channel = values.fraction();
        const double o = opacity, c = channel;
        record->highlightOpacity = record->highlightOutlineOpacity = opacity;
        record->highlightColor[0] = record->highlightOutlineColor[0] = channel;
        const double kept = single(1.0 - o) * surface[0];
        EXPECT_EQ(paintAt(0.9)[0], kept + single(o * c));
        EXPECT_EQ(paintAt(0.96875)[0], kept + o * c);
    }
}

TEST_F(Highlight, OnlyChosenLightsThatReachAndAreNotFlagged) {
    FakeLight light = lightAt(0.96875);
    light.flags = HOST_LIGHT_NO_SPECULAR;
    host.lights = {light};
    EXPECT_EQ(paint(), surface);
    host.lights[0].flags = ~HOST_LIGHT_NO_SPECULAR;
    EXPECT_EQ(paint(), disc);
    host.lights[0].reaches = false;
    EXPECT_EQ(paint(), surface);
    host.lights[0].reaches = true;
    host.lights[0].name = "Key ";
    EXPECT_EQ(paint(), surface);
    record->useAllLights = 1;
    chooseLights(*record, {});
    EXPECT_EQ(paint(), surface);
}

TEST_F(Highlight, LightModeTakesTheColourOfTheLight) {
    record->highlightEnable = 2;
    FakeLight red = lightAt(0.96875);
    red.color = {1, 0, 0};
    host.lights = {red};
    NewTime(record.get(), 0, 7.5);
    EXPECT_EQ(paint(), (Vec{1, 0, 0}));
    EXPECT_EQ(host.queryTimes, std::vector<double>{7.5});
    lightinfo = nullptr;  // nobody to ask: the record's own colour, no flags
    host.lights[0].flags = HOST_LIGHT_NO_SPECULAR;
    EXPECT_EQ(paint(), disc);
}

TEST_F(Highlight, MirrorsAtTheNormalTowardsTheRaySource) {
    host.lights = {{.direction = {0.6, -0.8, 0}}};
    HostSample sample = upwardSample(surface);
    sample.worldPosition[2] = 2.0;
    // The mirror direction is (0.6, 0.8, 0); the viewer is almost there.
    sample.raySource[0] = 6.1;
    sample.raySource[1] = 8.0;
    sample.raySource[2] = 2.0;
    drawSpec(record.get(), &sample);
    EXPECT_EQ(colorOf(sample), disc);
    sample = upwardSample(surface);
    for (double& component : sample.raySource)
        component = 0.0;
    drawSpec(record.get(), &sample);
    EXPECT_EQ(colorOf(sample), surface) << "no view direction, no highlight";
}

}  // namespace
}  // namespace tavora::testing
