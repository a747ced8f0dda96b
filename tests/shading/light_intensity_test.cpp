#include "shading/light_intensity.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "plugin/services.h"
#include "shading/render_pass.h"
#include "tests/support/fake_host.h"
#include "tests/support/single.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

class LightIntensity : public ::testing::Test {
  protected:
    double measure() { return cb_lightIntensity(record.get(), &sample); }
    static Vec summed() { return {colorIllum[0], colorIllum[1], colorIllum[2]}; }

    FakeHost host;
    Record record = newRecord();
    HostSample sample = upwardSample();
};

TEST_F(LightIntensity, SumsAmbientAndLambert) {
    host.ambient = {0.25, 0.25, 0.25};
    host.add({.direction = {std::sqrt(0.75), -0.5, 0}});
    EXPECT_EQ(measure(), 0.75);
    EXPECT_EQ(summed(), (Vec{1.25, 1.25, 1.25}));
    EXPECT_EQ(record->lightCursor, record->lightList);

    host.ambient = {0.25, 0.5, 0};
    host.lights[0].arriving = {0.75, 0, 0};
    EXPECT_EQ(measure(), 0.25 + 0.125);
    EXPECT_EQ(summed(), (Vec{1.0, 0.5, 0}));
}

TEST_F(LightIntensity, CountsOnlyLightsThatReachTheFront) {
    const struct {
        Vec direction;
        bool reaches;
        double sum, illum;
    } cases[] = {
        {{0, -0.5, 0}, true, 0.5, 1},  {{0, -0.5, 0}, false, 0, 0},
        {{0, 1e-300, 0}, true, 0, 0},   // from behind
        {{1, 0, 0}, true, 0, 1},        // edge-on: its colour only
        {{0, -1e-300, 0}, true, 0, 1},  // just in front
        {{0, nan, 0}, true, 0, 0},
    };
    for (const auto& c : cases) {
        host.lights.clear();
        host.add({.direction = c.direction, .reaches = c.reaches});
        EXPECT_NEAR(measure(), c.sum, 1e-200);
        EXPECT_EQ(summed()[0], c.illum) << c.direction[1];
    }
}

TEST_F(LightIntensity, StopsOnceTheSumIsAboveOne) {
    host.ambient = {0.5, 0.5, 0.5};
    host.add({.direction = {0, -0.5, 0}});  // the sum is 1.0: not above
    host.add({.arriving = {9, 9, 9}, .reaches = false});
    host.add({.arriving = {0.25, 0.25, 0.25}});
    host.add({.arriving = {9, 9, 9}});
    EXPECT_EQ(measure(), 1.0);
    EXPECT_EQ(summed()[0], 0.5 + 1.0 + 0.25);
    EXPECT_EQ(host.asked.size(), 3u);

    // A bright ambient still asks up to the first light that reaches the point,
    // whichever way it faces.
    host.asked.clear();
    host.ambient = {2, 2, 2};
    host.lights[0].reaches = false;
    host.lights[2].direction = {0, 1, 0};
    EXPECT_EQ(measure(), 1.0);
    EXPECT_EQ(host.asked.size(), 3u);
    EXPECT_EQ(summed()[0], 2.0);
}

TEST_F(LightIntensity, ChosenLightsCountByNameAndByEntry) {
    record->useAllLights = 0;
    host.ambient = {0.125, 0.125, 0.125};
    host.add({.name = "Key", .direction = {0, -0.25, 0}});
    host.add({.name = "key", .direction = {0, -0.5, 0}});
    host.add({.name = "Key", .direction = {0, -0.25, 0}});
    const struct {
        std::vector<std::string> chosen;
        double sum, illum;
    } cases[] = {
        {{}, 0, 0},
        {{"Nobody", "Ke", "Keys"}, 0, 0},
        {{"Key"}, 0.5, 2},
        {{"key", "Ambient"}, 0.625, 1.125},
        {{"Ambient", "Ambient"}, 0.25, 0.25},
        {{"ambient"}, 0, 0},
        {{"key", "key"}, 1.0, 2},
        // Above 1.0 an entry asks no further, but the next entry still asks.
        {{"key", "key", "Key", "key"}, 1.0, 4},
        // 1.0 after the first of both: not above, the second still counts.
        {{"key", "Ambient", "Ambient", "Key"}, 1.0, 3.25},
    };
    for (const auto& c : cases) {
        chooseLights(*record, c.chosen);
        EXPECT_EQ(measure(), c.sum);
        EXPECT_EQ(summed()[0], c.illum);
        EXPECT_EQ(record->lightCursor, nullptr);
    }
    // A scene light of that name counts beside the ambient light.
    host.add({.name = "Ambient", .direction = {0, -0.5, 0}});
    chooseLights(*record, {"Ambient"});
    EXPECT_EQ(measure(), 0.625);
}

TEST_F(LightIntensity, PowerCurveIsARootCappedAtOne) {
    const auto curve = [&](double sum, int power) {
        host.ambient = {3 * sum, 0, 0};
        record->lightPower = power;
        return measure();
    };
    EXPECT_EQ(curve(0.25, 0), 0.25);
    EXPECT_EQ(curve(0.25, 1), 0.5);
    EXPECT_EQ(curve(0.125, 2), std::exp(0.333333 * std::log(0.125)));
    EXPECT_NE(curve(0.125, 2), 0.5);
    EXPECT_EQ(curve(0.25, 3), 0.25);
    EXPECT_EQ(curve(2.0, 2), 1.0);
    EXPECT_EQ(curve(-0.5, 0), -0.5);
    EXPECT_EQ(curve(-0.5, 1), 1.0) << "the root is not a number, which counts as 1";
}

TEST_F(LightIntensity, WeighsByTheWholeSumOfAColour) {
    // The cosine meets the sum of the channels before the division by 3.
    Values values(11);
    for (int round = 0; round < 200; ++round) {
        host.lights.clear();
        const Vec k = {values.real(0, 0.5), values.real(0, 0.5), values.real(0, 0.5)};
        const double cosine = values.real();
        host.add({.arriving = k, .direction = {0, -cosine, 0}});
        EXPECT_EQ(measure(), (k[0] + k[1] + k[2]) * cosine / 3.0);
        host.lights.clear();
        host.ambient = k;
        EXPECT_EQ(measure(), (k[0] + k[1] + k[2]) / 3.0);
        host.ambient = {0, 0, 0};
    }
}

TEST_F(LightIntensity, AsksForTheAmbientLightOfTheFrame) {
    NewTime(record.get(), 1, 2.5);
    measure();
    EXPECT_EQ(host.queryTimes, std::vector<double>{2.5});
    host.ambient = {1, 1, 1};
    lightinfo = nullptr;  // black ambient, and nothing worse
    EXPECT_EQ(measure(), 0.0);
    EXPECT_EQ(summed(), (Vec{0, 0, 0}));
}

}  // namespace
}  // namespace tavora::testing
