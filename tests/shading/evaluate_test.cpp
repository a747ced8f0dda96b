#include "shading/evaluate.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

#include "plugin/services.h"
#include "shading/light_intensity.h"
#include "shading/render_pass.h"
#include "tests/support/allocations.h"
#include "tests/support/fake_host.h"
#include "tests/support/single.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const Vec base = {0.25, 0.5, 0.75};

class Evaluation : public ::testing::Test {
  protected:
    Evaluation() { Init(record.get(), 0); }
    ~Evaluation() override { Cleanup(record.get()); }
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;

    /// The gradient becomes this one zone at every intensity; the list's last
    /// zone is never reached.
    Zone& onlyZone(const Zone& zone) {
        Zone last = greyZone(1.0f, 0.0f);
        last.trans = 9.0f;
        replaceZones(*record, {zone, last});
        return *record->zoneList;
    }
    HostSample evaluated(HostSample sample) {
        Evaluate(record.get(), &sample);
        return sample;
    }
    Vec shade(Vec color = base) { return colorOf(evaluated(upwardSample(color))); }

    FakeHost host;
    Record record = newRecord(identity<HostSurfaceId>(5));
};

TEST_F(Evaluation, AnOpaquePlainZoneComesOutAsItIs) {
    Zone zone = greyZone(0.0f, 0.0f);
    zone.color[0] = 128.0f / 255.0f;
    zone.color[1] = 64.0f / 255.0f;
    onlyZone(zone);
    const HostSample sample = evaluated(upwardSample());
    EXPECT_EQ(colorOf(sample), (Vec{zone.color[0], zone.color[1], 0}));
    EXPECT_EQ(sample.luminosity, 1.0);
    EXPECT_EQ(sample.diffuse, 0.0);
    EXPECT_EQ(sample.specular, 0.0);
}

TEST_F(Evaluation, LooksUpIntensityPlusLuminosityCappedAtOne) {
    host.add({.direction = {0, -0.5, 0}});
    const auto shadeAt = [&](double luminosity) {
        HostSample sample = upwardSample();
        sample.luminosity = luminosity;
        return colorOf(evaluated(sample));
    };
    EXPECT_EQ(shadeAt(0.0), (Vec{0, 0, 1}));
    EXPECT_EQ(shadeAt(0.125), (Vec{0, 1, 0}));
    EXPECT_EQ(shadeAt(7.0), (Vec{1, 0, 0})) << "never above the last zone";
    EXPECT_EQ(shadeAt(nan), (Vec{1, 0, 0}));
    EXPECT_EQ(shadeAt(-7.0), (Vec{0, 0, 0}));
}

TEST_F(Evaluation, MixesOverTheBaseTwiceThenSaturatesAndBrightens) {
    Values values(16);
    for (int round = 0; round < 300; ++round) {
        Zone zone = greyZone(0.0f, 0.0f);
        for (float& channel : zone.color)
            channel = values.fraction();
        zone.opacity = values.fraction();
        zone.sat = values.fraction(0.0, 2.0);
        zone.bright = values.fraction(0.0, 2.0);
        onlyZone(zone);
        const Vec color = {values.real(), values.real(), values.real()};
        const double a = zone.opacity, s = zone.sat;
        Vec mixed;
        for (unsigned i = 0; i < 3; ++i) {
            const double kept = single(1.0 - a) * color[i];
            mixed[i] = single(kept + a * single(kept + single(a * zone.color[i])));
        }
        const double mean = single(single(single(mixed[1] + mixed[0]) + mixed[2]) / 3.0);
        const Vec result = shade(color);
        for (unsigned i = 0; i < 3; ++i) {
            EXPECT_EQ(result[i], zone.bright * (single(1.0 - s) * mean + single(s * mixed[i])));
        }
    }
}

TEST_F(Evaluation, AddsTheZonesTransparencyUpToOne) {
    Zone& zone = onlyZone(greyZone(0.0f, 0.0f));
    zone.trans = 0.5f;
    const auto transparency = [&](double before) {
        HostSample sample = upwardSample();
        sample.transparency = before;
        return evaluated(sample).transparency;
    };
    record->transparencyUsed = 0;
    EXPECT_EQ(transparency(0.25), 0.25);
    record->transparencyUsed = 1;
    EXPECT_EQ(transparency(0.25), 0.75);
    EXPECT_EQ(transparency(0.75), 1.0);
    EXPECT_EQ(transparency(nan), 1.0);
    zone.trans = 0.1f;
    EXPECT_EQ(transparency(0.0), static_cast<double>(0.1f));
}

TEST_F(Evaluation, TintsByTheShiftedLightColour) {
    Values values(17);
    Zone& zone = onlyZone(greyZone(0.0f, 1.0f));
    zone.accountLights = 1;
    for (int round = 0; round < 100; ++round) {
        host.ambient = {values.real(), values.real(), values.real()};
        zone.color[0] = values.fraction();
        zone.accountLightOpac = values.fraction();
        const double o = zone.accountLightOpac, c = zone.color[0];
        const double mean = (host.ambient[0] + host.ambient[1] + host.ambient[2]) / 3.0;
        EXPECT_EQ(shade()[0], single(1.0 - o) * c + o * c * (host.ambient[0] + (1.0 - mean)));
    }
    // Light colours that sum to nothing do not tint.
    zone.color[0] = 0.5f;
    zone.accountLightOpac = 1.0f;
    host.ambient = {1, -1, 0};
    EXPECT_EQ(shade()[0], 0.5);
    HostSample lit = upwardSample();
    lit.luminosity = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(evaluated(lit).color[0], 1.0);
    zone.accountLights = 0;
    EXPECT_EQ(evaluated(lit).color[0], 0.5);
}

TEST_F(Evaluation, ColourTextureCoversOrShades) {
    Zone zone = greyZone(0.0f, 0.25f);
    zone.color[0] = 1.0f;  // mean 0.5
    onlyZone(zone);
    const struct {
        int use;
        double alpha;
        Vec color;
    } cases[] = {
        {0, 0.5, {1, 0.25, 0.25}},          {1, 0.0, base},
        {1, 0.25, {0.4375, 0.4375, 0.625}}, {1, 1.0, {1, 0.25, 0.25}},
        {2, 0.0, {0.125, 0.25, 0.375}},     {2, 0.5, {0.3125, 0.1875, 0.25}},
        {2, 1.0, {0.5, 0.125, 0.125}},      {3, 0.5, {1, 0.25, 0.25}},
    };
    for (const auto& c : cases) {
        record->colorTextureUse = c.use;
        host.channelAlpha = {{"BaseColor", c.alpha}};
        EXPECT_EQ(shade(), c.color) << c.use << ", " << c.alpha;
    }
    host.channelAlpha.clear();
    record->colorTextureUse = 1;
    EXPECT_EQ(shade(), base);
}

TEST_F(Evaluation, StagesFollowTheirOrder) {
    onlyZone(greyZone(0.0f, 1.0f));
    host.add({.direction = {0.2, -0.98, 0}});
    chooseLights(*record, {"Key"});
    const auto paint = [](float color[3], Vec value) {
        for (unsigned i = 0; i < 3; ++i)
            color[i] = static_cast<float>(value[i]);
    };
    // Each stage paints over the one before it, whole.
    record->colorTextureUse = 1;
    EXPECT_EQ(shade(), base) << "decal without a texture";
    record->slopeEnable = record->slopeStyle = 1;
    record->slopeTopOpacity = 1.0f;
    paint(record->slopeTopColor, {0, 0, 1});
    EXPECT_EQ(shade(), (Vec{0, 0, 1}));
    record->highlightOutlineEnable = 1;  // the ring alone runs the stage, too
    record->highlightSize = 0.0f;
    record->highlightOutlineSize = 0.5f;
    paint(record->highlightOutlineColor, {0, 1, 0});
    EXPECT_EQ(shade(), (Vec{0, 1, 0}));
    record->highlightEnable = 1;
    record->highlightSize = 0.5f;
    EXPECT_EQ(shade(), (Vec{1, 1, 1}));
    record->highlightOutlineEnable = 0;
    EXPECT_EQ(shade(), (Vec{1, 1, 1}));
    record->edgeEnable = 1;
    record->edgeCoverage = 2.0f;
    paint(record->edgeColor, {1, 0, 0});
    EXPECT_EQ(shade(), (Vec{1, 0, 0}));
    record->inkoverEnable = 1;
    record->inkoverTranslucent = 1;
    host.channelAlpha = {{"Translucency", 0.5}};
    host.onTrace = [](const double*, const double*, HostSample*) { return 1.0; };
    host.lockLog.clear();
    EXPECT_EQ(shade(), (Vec{0.5, 0, 0}));
    EXPECT_EQ(host.lockLog, "(iit)") << "one lock around everything";
}

// Diffuse and luminosity are neighbours in the record. g++ 12's block
// vectoriser, if it is let at them, stores both without the rounding.
TEST_F(Evaluation, ForceColourRoundsEachResponseToSingle) {
    Values values(18);
    for (int round = 0; round < 100; ++round) {
        HostSample sample = upwardSample();
        sample.diffuse = values.real();
        sample.luminosity = values.real();
        sample.specular = values.real();
        const double f = record->forceColor = round == 0 ? 0.0f : values.fraction();
        const double keep = single(1.0 - f);
        const HostSample result = evaluated(sample);
        EXPECT_EQ(result.diffuse, single(keep * sample.diffuse));
        EXPECT_EQ(result.luminosity, single(keep * sample.luminosity + f));
        EXPECT_EQ(result.specular, single(keep * sample.specular));
    }
}

TEST_F(Evaluation, WritesNothingElseAndNothingWithoutItems) {
    HostSample sample;
    std::memset(&sample, 0x3e, sizeof sample);
    const HostSample like = upwardSample();
    sample.illuminate = like.illuminate;
    const HostSample before = sample;
    record->transparencyUsed = 1;
    HostSample after = evaluated(sample);
    EXPECT_NE(colorOf(after), colorOf(before));
    std::memcpy(after.color, before.color, sizeof after.color);
    after.luminosity = before.luminosity;
    after.diffuse = before.diffuse;
    after.specular = before.specular;
    after.transparency = before.transparency;
    EXPECT_EQ(bytesOf(after), bytesOf(before));

    iteminfo = nullptr;
    host.lockLog.clear();
    after = evaluated(sample);
    EXPECT_EQ(bytesOf(after), bytesOf(before));
    EXPECT_EQ(host.lockLog, "");
}

TEST_F(Evaluation, RunsUnlockedWithoutAMutex) {
    Cleanup(record.get());
    EXPECT_EQ(shade(), (Vec{0, 0, 0}));
    EXPECT_EQ(host.lockLog, "");
}

TEST_F(Evaluation, ATracedRayMayEvaluateTheSameRecord) {
    host.ambient = {0.25, 0.5, 0.75};
    host.add({.direction = {0, -0.25, 0}});
    chooseLights(*record, {"Key", "Ambient"});
    record->useAllLights = 0;
    record->inkoverEnable = record->inkoverTranslucent = 1;
    host.channelAlpha = {{"Translucency", 0.5}};
    int depth = 0;
    HostSample inner = upwardSample({1, 1, 1});
    host.onTrace = [&](const double*, const double*, HostSample* hit) {
        if (++depth <= 8) {
            *hit = inner;
            Evaluate(record.get(), hit);
        }
        const bool missed = depth-- > 8;
        return missed ? -1.0 : 1.0;
    };
    HostSample sample = upwardSample();
    sample.luminosity = 0.125;
    record->forceColor = 0.5f;
    // Outside and inside meet other zones: red over green.
    const HostSample result = evaluated(sample);
    EXPECT_EQ(colorOf(result), (Vec{0.5, 0.5, 0}));
    EXPECT_EQ(result.luminosity, 0.5625);
    EXPECT_EQ(host.traces, 9);
    EXPECT_EQ(std::count(host.lockLog.begin(), host.lockLog.end(), '('),
              std::count(host.lockLog.begin(), host.lockLog.end(), ')'));
}

TEST_F(Evaluation, AllocatesNothingButTheHitOfInkOver) {
    host.add({});
    chooseLights(*record, {"Key"});
    record->highlightEnable = record->slopeEnable = record->edgeEnable = 1;
    host.lockLog.reserve(100);
    host.asked.reserve(100);
    host.queryTimes.reserve(100);
    HostSample sample = upwardSample();
    {
        const AllocationWatch watch;
        Evaluate(record.get(), &sample);
        EXPECT_EQ(watch.count(), 0);
    }
    record->inkoverEnable = 1;
    const long live = liveAllocations();
    const AllocationWatch watch;
    Evaluate(record.get(), &sample);
    EXPECT_EQ(watch.count(), 1);
    EXPECT_EQ(liveAllocations(), live);
}

TEST_F(Evaluation, SurvivesAnyValues) {
    Values values(19);
    host.add({.arriving = {nan, 1, 1}});
    host.channelAlpha = {{"BaseColor", nan}, {"Translucency", nan}};
    host.onTrace = [&](const double*, const double*, HostSample*) { return values.real(-1, 1); };
    for (int round = 0; round < 2000; ++round) {
        std::vector<Zone> zones(static_cast<unsigned>(values.integer(0, 4)));
        for (Zone& zone : zones) {
            for (float* field : {&zone.position, &zone.opacity, &zone.bright, &zone.trans}) {
                *field = values.anyFloat();
            }
            zone.blend = values.integer(0, 1);
            zone.accountLights = values.integer(0, 1);
        }
        replaceZones(*record, zones);
        chooseLights(*record, {"Ambient", round % 2 ? "Key" : ""});
        for (std::int32_t* field :
             {&record->slopeStyle, &record->lightPower, &record->colorTextureUse,
              &record->highlightEnable, &record->useAllLights, &record->inkoverTranslucent}) {
            *field = round % 5 ? values.integer(0, 2) : values.anyInteger();
        }
        for (float* field : {&record->slopeCenter, &record->edgeCoverage, &record->forceColor,
                             &record->edgeSharpness, &record->highlightSize}) {
            *field = values.anyFloat();
        }
        record->slopeEnable = record->edgeEnable = record->inkoverEnable = 1;
        record->maxTraceDepth = values.integer(-2, 3);
        Init(record.get(), 0);
        shade();
        EXPECT_EQ(record->zoneCursor == nullptr, zones.empty());
    }
}

}  // namespace
}  // namespace tavora::testing
