// An evaluation as the host sees it: what it reads, writes, locks and allocates.

#include "shading/evaluate.h"

#include <algorithm>

#include "plugin/description.h"
#include "plugin/record/services.h"
#include "shading/render_pass.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap.h"

namespace tavora::testing {
namespace {

struct Evaluation : ::testing::Test {
    Evaluation() { Init(record.get(), 0); }
    ~Evaluation() override { Cleanup(record.get()); }

    HostSample evaluated(HostSample sample = upwardSample()) {
        Evaluate(record.get(), &sample);
        return sample;
    }
    /// The same, with `zone` as the only zone that a sample can meet.
    HostSample evaluatedIn(HostSample sample = upwardSample()) {
        replaceZones(*record, {zone, greyZone(1.0f, 0.0f)});
        return evaluated(sample);
    }

    FakeHost host;
    Record record = newRecord(identity<HostSurfaceId>(5));
    Zone zone = greyZone(0.0f, 0.5f);
};

TEST_F(Evaluation, LooksUpIntensityPlusLuminosityCappedAtOne) {
    host.lights = {{.direction = {0, -0.5, 0}}};
    const Vec black = {0, 0, 0}, blue = {0, 0, 1}, green = {0, 1, 0}, red = {1, 0, 0};
    for (const auto& [luminosity, color] :
         {std::pair{-7.0, black}, {0.0, blue}, {0.125, green}, {7.0, red}, {nan, red}}) {
        HostSample sample = upwardSample();
        sample.luminosity = luminosity;
        EXPECT_EQ(colorOf(evaluated(sample)), color) << luminosity;
    }
}

TEST_F(Evaluation, AZoneAddsTransparencyAndTintsWhereThereIsLight) {
    HostSample sample = upwardSample();
    zone.trans = 0.1f;
    for (const auto& [before, used, after] : {std::tuple{0.25, 0, 0.25},
                                              {0.25, 1, static_cast<double>(0.1f) + 0.25},
                                              {0.95, 1, 1.0},
                                              {nan, 1, 1.0}}) {
        sample.transparency = before;
        record->transparencyUsed = used;
        EXPECT_EQ(evaluatedIn(sample).transparency, after) << before;
    }
    zone.accountLights = 1;
    host.ambient = {1, -1, 0};  // colours that sum to nothing
    EXPECT_EQ(evaluatedIn(sample).color[0], 0.5);
    sample.luminosity = least;
    EXPECT_EQ(evaluatedIn(sample).color[0], 1.0);
    zone.accountLights = 0;
    EXPECT_EQ(evaluatedIn(sample).color[0], 0.5);
}

TEST_F(Evaluation, WritesNothingElseAndNothingWithoutItems) {
    std::mt19937 random;
    HostSample before;
    scramble(&before, sizeof before, random);
    before.illuminate = upwardSample().illuminate;
    record->slopeEnable = record->edgeEnable = record->transparencyUsed = 1;
    HostSample after = evaluated(before);
    EXPECT_NE(bytesOf(after), bytesOf(before));
    std::copy_n(before.color, 3, after.color);
    after.luminosity = before.luminosity;
    after.diffuse = before.diffuse;
    after.specular = before.specular;
    after.transparency = before.transparency;
    EXPECT_EQ(bytesOf(after), bytesOf(before));

    iteminfo = nullptr;
    host.log.clear();
    EXPECT_EQ(bytesOf(evaluated(before)), bytesOf(before));
    EXPECT_EQ(host.log, "");
}

TEST_F(Evaluation, HoldsTheMutexFromStartToEndAndLetsTracedRaysBackIn) {
    host.ambient = {0.25, 0.5, 0.75};
    host.lights = {{.direction = {0, -0.25, 0}}};
    chooseLights(*record, {"Key", "Ambient"});
    record->useAllLights = 0;
    record->inkoverEnable = record->inkoverTranslucent = 1;
    record->forceColor = 0.5f;
    host.channelAlpha = {{"Translucency", 0.5}};
    int depth = 0;
    host.onTrace = [&](const double*, const double*, HostSample* hit) {
        if (++depth > 2) return -1.0;
        *hit = evaluated();
        return 1.0;
    };
    HostSample sample = upwardSample();
    sample.luminosity = 0.125;
    sample = evaluated(sample);
    EXPECT_EQ(host.log, "(it(it(it)p)p)");
    EXPECT_EQ(colorOf(sample), (Vec{0.5, 0.5, 0})) << "red outside, green inside";
    EXPECT_EQ(sample.luminosity, 0.5625);

    Cleanup(record.get());
    host.log.clear();
    evaluated();
    EXPECT_EQ(host.log, "it") << "without a mutex it runs unlocked";
}

TEST_F(Evaluation, AllocatesNothingButTheHitOfInkOver) {
    host.lights = {{}};
    chooseLights(*record, {"Key"});
    record->highlightEnable = record->slopeEnable = record->edgeEnable = 1;
    host.log.reserve(100);
    host.queryTimes.reserve(100);
    const long live = liveAllocations;
    for (const int inkOver : {0, 1}) {
        record->inkoverEnable = inkOver;
        const AllocationWatch watch;
        evaluated();
        EXPECT_EQ(watch.count, inkOver);
        EXPECT_EQ(liveAllocations, live);
    }
}

TEST_F(Evaluation, SurvivesAnyValues) {
    std::mt19937 random;
    const auto upTo = [&](unsigned most) { return static_cast<int>(random() % (most + 1)); };
    host.lights = {{.arriving = {nan, 1, 1}}};
    host.channelAlpha = {{"BaseColor", nan}, {"Translucency", nan}};
    host.onTrace = [&](const double*, const double*, HostSample*) { return upTo(2) - 1.0; };
    for (int round = 0; round < 2000; ++round) {
        replaceZones(*record, anyZones(upTo(4), random));
        scramble(&record->highlightOutlineEnable, settingsSize, random);
        record->colorTextureUse = upTo(3);
        record->lightPower = upTo(3);
        record->useAllLights = upTo(1);
        record->inkoverTranslucent = upTo(1);
        record->maxTraceDepth = upTo(3) - 1;
        chooseLights(*record, {"Ambient", round % 2 ? "Key" : ""});
        Init(record.get(), 0);
        evaluated();
        EXPECT_EQ(record->zoneCursor == nullptr, record->zoneList == nullptr);
    }
}

TEST_F(Evaluation, PassFindsTransparencyAboveAMillionthAndKeepsOneMutex) {
    for (const auto& [trans, flags] :
         {std::pair{1.00000011e-6f, 0x45Eu}, {9.99999997e-7f, 0x41Eu}, {-1.0f, 0x41Eu}}) {
        record->zoneList->next->trans = trans;
        EXPECT_EQ(Init(record.get(), 0), nullptr);
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        EXPECT_EQ(Flags(record.get()), flags) << trans;
    }
    const Record second = newRecord();
    const HostMutexId before = mtid;
    Init(second.get(), 0);
    EXPECT_NE(mtid, before);
    EXPECT_EQ(host.liveMutexes, 1);
    EXPECT_TRUE(host.errors.empty());
    host.mutexesWork = false;
    EXPECT_EQ(Init(second.get(), 0), nullptr);
    EXPECT_EQ(host.errors, Names{"Cound not create mutex"});
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_TRUE(host.liveMutexes == 0 && mtid == nullptr);
        Cleanup(second.get());
    }
}

}  // namespace
}  // namespace tavora::testing
