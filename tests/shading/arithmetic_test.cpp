// Where values are rounded, and which branch a value on a boundary takes.

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "shading/evaluate.h"
#include "shading/overlays.h"
#include "shading/vector_math.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

using Change = void (*)(ShaderInstance&, HostSample&);
struct WorkedExample {
    const char* what;
    Change change;
    Vec color;
};

// Worked out from the formulas, outside this program, each operation in exact
// arithmetic and then rounded to double or to single as it must be. They hold
// to the last bit. Never record them anew from the code.
const WorkedExample workedExamples[] = {
    {"lower half of a blend",
     [](auto&, auto&) {},
     {0x1.c68116349724ap-2, 0x1.ceaed3d319c98p-2, 0x1.af87bd5d92760p-2}},
    {"upper half",
     [](auto&, auto& s) { s.luminosity = 0.05; },
     {0x1.6d929d3ed1915p-2, 0x1.27bf4c78c3410p-1, 0x1.fe14a2c5eba47p-2}},
    {"above the last zone",
     [](auto&, auto& s) { s.luminosity = 0.4; },
     {0x1.40a418c961f17p-3, 0x1.6fa493ce15b46p-1, 0x1.861567a30b886p-1}},
    {"shaded texture",
     [](auto& r, auto&) { r.colorTextureUse = 2; },
     {0x1.9e589b8047351p-3, 0x1.470525fec614bp-2, 0x1.7cb32071ff471p-2}},
    {"decal, chosen lights, squared",
     [](auto& r, auto& s) {
         r.colorTextureUse = r.lightPower = 1;
         r.useAllLights = 0;
         s.luminosity = -0.4;
     },
     {0x1.2ac821aaa47cep-2, 0x1.1450d5520eeddp-1, 0x1.404941cad6e44p-1}},
    {"chosen lights, cubed",
     [](auto& r, auto& s) {
         r.lightPower = 2;
         r.useAllLights = 0;
         s.luminosity = -0.4;
     },
     {0x1.93efbfce9a045p-2, 0x1.15d3553ac2c6ep-1, 0x1.d6b5bbd99fdbap-2}},
    {"slope mixed above its centre",
     [](auto& r, auto&) { r.slopeEnable = 1; },
     {0x1.12c8c78f1c2cfp-1, 0x1.9e317aa9a5cacp-2, 0x1.d5a71b710eef4p-2}},
    {"slope mixed below",
     [](auto& r, auto&) {
         r.slopeEnable = 1;
         r.slopeCenter = 0.9f;
     },
     {0x1.d5c93359dc49cp-2, 0x1.d11bc16221083p-2, 0x1.b7f8e1b5507a0p-2}},
    {"slope stepped above its centre",
     [](auto& r, auto&) { r.slopeEnable = r.slopeStyle = 1; },
     {0x1.29510564f4caap-1, 0x1.81516b1da2491p-2, 0x1.e664236b31c65p-2}},
    {"slope stepped below",
     [](auto& r, auto&) {
         r.slopeEnable = r.slopeStyle = 1;
         r.slopeCenter = 0.9f;
     },
     {0x1.39a99d955b1eep-2, 0x1.1a2a35b577806p-1, 0x1.7dcc53e4c15f6p-2}},
    {"highlight disc",
     [](auto& r, auto&) { r.highlightEnable = 1; },
     {0x1.478b203d1a380p-1, 0x1.658b2cd6fd476p-1, 0x1.2636dc6b2e426p-1}},
    {"highlight in the light's colour",
     [](auto& r, auto&) { r.highlightEnable = 2; },
     {0x1.63b415d195194p-1, 0x1.4962377ad451cp-1, 0x1.6b260ae099f5ap-2}},
    {"highlight ring",
     [](auto& r, auto&) {
         r.highlightOutlineEnable = 1;
         r.highlightSize = 0.05f;
     },
     {0x1.02ea9fc83555bp-2, 0x1.867024ec511cfp-3, 0x1.3d6f828d5cc1ep-2}},
    {"edge",
     [](auto& r, auto&) { r.edgeEnable = 1; },
     {0x1.2191fe430b0a2p-1, 0x1.6bb21baba58d6p-3, 0x1.96c41d2a7351ep-1}},
    {"see-through ink-over",
     [](auto& r, auto&) { r.inkoverEnable = r.inkoverTranslucent = 1; },
     {0x1.a84129fec9472p-2, 0x1.42aa6eb5f4d92p-2, 0x1.3fec4e504baebp-1}},
    {"all stages, in their order",
     [](auto& r, auto&) {
         r.slopeEnable = r.highlightEnable = r.edgeEnable = 1;
         r.inkoverEnable = r.inkoverTranslucent = 1;
         r.slopeCenter = 0.5f;
     },
     {0x1.09d73b21cce66p-1, 0x1.70c678d3c3cccp-3, 0x1.be1ef929e0a1ep-1}},
};

void set(double* vector, Vec value) {
    std::copy(value.begin(), value.end(), vector);
}
void set(float* color, float r, float g, float b) {
    color[0] = r;
    color[1] = g;
    color[2] = b;
}

Zone zoneOf(Vec color, std::array<float, 5> settings, int blend) {
    Zone zone = greyZone(settings[0], 0.0f, blend);
    for (unsigned i = 0; i < 3; ++i)
        zone.color[i] = static_cast<float>(color[i]);
    zone.opacity = settings[1];
    zone.bright = settings[2];
    zone.sat = settings[3];
    zone.accountLights = settings[4] < 1.0f ? 1 : 0;
    zone.accountLightOpac = settings[4];
    return zone;
}

/// The record that the examples change.
Record exampleRecord() {
    Record record = newRecord(identity<HostSurfaceId>(1));
    replaceZones(*record, {zoneOf({0.9, 0.3, 0.1}, {0.1f, 0.7f, 0.9f, 0.6f, 0.35f}, 0),
                           zoneOf({0.5, 0.5, 0.5}, {0.45f, 0.6f, 0.2f, 0.3f, 0.8f}, 1),
                           zoneOf({0.2, 0.8, 0.4}, {0.8f, 0.45f, 1.1f, 1.3f, 1.0f}, 0)});
    chooseLights(*record, {"Rim", "Ambient", "Key"});
    set(record->slopeTopColor, 0.9f, 0.2f, 0.6f);
    set(record->slopeBottomColor, 0.1f, 0.7f, 0.3f);
    record->slopeTopOpacity = 0.3f;
    record->slopeBottomOpacity = 0.4f;
    record->slopeCenter = 0.55f;
    record->highlightOpacity = 0.55f;
    set(record->highlightColor, 0.8f, 0.9f, 0.7f);
    record->highlightOutlineOpacity = 0.65f;
    set(record->highlightOutlineColor, 0.15f, 0.05f, 0.25f);
    record->edgeSharpness = 0.3f;
    set(record->edgeColor, 0.6f, 0.1f, 0.9f);
    return record;
}

TEST(Arithmetic, WorkedExamplesHoldToTheLastBit) {
    FakeHost host;
    host.ambient = {0.11, 0.13, 0.17};
    host.lights = {{.name = "Key",
                    .arriving = {0.31, 0.27, 0.22},
                    .direction = {-0.36, -0.48, -0.8},
                    .color = {0.9, 0.8, 0.3}},
                   {.name = "Rim", .arriving = {0.13, 0.19, 0.29}, .direction = {0.6, -0.8, 0.0}}};
    host.channelAlpha = {{"BaseColor", 0.3}, {"Translucency", 0.4}};
    host.onTrace = [](const double*, const double*, HostSample* hit) {
        set(hit->color, {0.37, 0.11, 0.93});
        return 1.0;
    };
    for (const WorkedExample& example : workedExamples) {
        const Record record = exampleRecord();
        HostSample sample = upwardSample({0.23, 0.57, 0.71});
        set(sample.worldNormal, {0.48, 0.6, 0.64});
        set(sample.worldPosition, {0.3, -0.2, 0.1});
        set(sample.raySource, {1.7, 2.9, 3.1});
        sample.cosine = 0.37;
        sample.luminosity = -0.2;
        example.change(*record, sample);
        Evaluate(record.get(), &sample);
        EXPECT_EQ(colorOf(sample), example.color) << example.what;
    }
}

// Diffuse and luminosity are neighbours in the sample. g++ 12's block
// vectoriser, if it is let at them, stores both without their rounding.
TEST(Arithmetic, ForceColourRoundsEachResponseToSingle) {
    FakeHost host;
    const Record record = newRecord();
    std::mt19937 random;
    const auto fraction = [&] { return std::uniform_real_distribution<double>()(random); };
    for (int round = 0; round < 100; ++round) {
        HostSample before = upwardSample();
        before.diffuse = fraction();
        before.luminosity = fraction();
        before.specular = fraction();
        record->forceColor = static_cast<float>(round % 10) / 10.0f;
        HostSample after = before;
        Evaluate(record.get(), &after);
        volatile float keep = 1.0f - record->forceColor, rounded;  // in memory, so for sure
        const auto expectRounded = [&](double value, double exact) {
            rounded = static_cast<float>(exact);
            EXPECT_EQ(value, static_cast<double>(rounded));
        };
        expectRounded(after.diffuse, keep * before.diffuse);
        expectRounded(after.luminosity, keep * before.luminosity + record->forceColor);
        expectRounded(after.specular, keep * before.specular);
    }
}

TEST(Arithmetic, OverlaysAtTheirBoundaries) {
    ShaderInstance record;
    const auto slope = [&](double value, int style, float center) {
        HostSample sample = upwardSample({0.5, 0.5, 0.5});
        sample.worldNormal[1] = 2.0 * value - 1.0;
        record.slopeStyle = style;
        record.slopeCenter = center;
        applySlope(record, sample);
        return sample.color[0];
    };
    record.slopeTopOpacity = 1.0f;  // white above; half black below
    const double mean = 0.25 * 0.5 + 0.75 * 0.5;
    EXPECT_EQ(slope(0.75, 1, 0.75f), 1.0);
    EXPECT_EQ(slope(std::nextafter(0.75, 0.0), 1, 0.75f), 0.25);
    EXPECT_EQ(slope(nan, 1, 0.75f), 0.25);
    EXPECT_EQ(slope(1.0, 0, 0.5f), 1.0);
    EXPECT_EQ(slope(0.5, 0, 0.5f), mean);
    EXPECT_EQ(slope(0.0, 0, 0.5f), 0.25);
    EXPECT_EQ(slope(-0.5, 0, 0.5f), 0.25) << "a normal longer than 1";
    EXPECT_EQ(slope(1.0, 0, 1.0f), 1.0) << "no division at the centre";
    EXPECT_EQ(slope(0.0, 0, 0.0f), mean);
    EXPECT_TRUE(std::isnan(slope(nan, 0, 0.5f)));

    const auto edge = [&](double cosine, float sharpness) {
        HostSample sample = upwardSample({0.5, 0.5, 0.5});
        sample.cosine = cosine;
        record.edgeSharpness = sharpness;
        applyEdge(record, sample);
        return sample.color[0];
    };
    record.edgeCoverage = 0.25f;
    EXPECT_EQ(edge(std::nextafter(0.25, 0.0), 1.0f), 0.0);
    EXPECT_EQ(edge(0.25, 1.0f), 0.5);
    EXPECT_EQ(edge(0.25, 0.5f), 0.0);
    EXPECT_EQ(edge(0.4375, 0.5f), 0.25);
    EXPECT_EQ(edge(0.625, 0.5f), 0.5);
    EXPECT_TRUE(std::isnan(edge(nan, 0.5f)));
}

TEST(Arithmetic, VectorsAndBlends) {
    double v[3] = {3, 0, 4}, zero[3] = {0, 0, 0}, odd[3] = {nan, 2, 0}, tenth[3] = {0.1, 0.7, 0.49};
    const double length = dlen(tenth), one[3] = {1, 1, 1}, large[3] = {1e17, -1e17, 1};
    for (double* vector : {v, zero, odd, tenth})
        normalize(vector);
    EXPECT_EQ(v[0], 0.6);
    EXPECT_EQ(zero[1], 0.0);
    EXPECT_EQ(odd[1], 2.0);
    EXPECT_EQ(tenth[2], 0.49 / length) << "a quotient, not a product with the reciprocal";
    EXPECT_EQ(ddot(large, one), 1.0) << "summed from x to z";
    EXPECT_EQ(dlenSquared(one), 3.0);
    EXPECT_EQ(ddist(zero, one), static_cast<double>(1.73205080757f));
    EXPECT_DOUBLE_EQ(smoothstep(0.2, 0.6, 0.4), 0.5);
    EXPECT_EQ(smoothstep(0.2, 0.6, 0.6), 1.0);
    EXPECT_EQ(smoothstep(0.5, 0.5, 0.5), 1.0) << "equal edges are a step";
    EXPECT_EQ(smoothstep(0.6, 0.2, 0.4), 0.0) << "the lower edge is tested first";
    EXPECT_EQ(saturate(1.0f, 1.0f, 0.0f, 0.0f, 0.0f), static_cast<double>(1.0f / 3.0f));
}

}  // namespace
}  // namespace tavora::testing
