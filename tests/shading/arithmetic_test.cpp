// Where values are rounded, and which branch a value on a boundary takes.

#include <cmath>

#include "shading/evaluate.h"
#include "shading/overlays.h"
#include "shading/vector_math.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

struct WorkedExample {
    const char* what;
    void (*change)(ShaderInstance&, HostSample&);
    Vec color;
};

// Worked out from the formulas, outside this program, each operation in exact
// arithmetic and then rounded to double or to single as it must be. They hold
// to the last bit. Never record them anew from the code.
const WorkedExample workedExamples[] = {
    {"lower half of a blend; slope mixed above its centre, disc, edge, see-through, in this order",
     [](auto& r, auto&) {
         r.slopeEnable = r.highlightEnable = r.edgeEnable = 1;
         r.inkoverEnable = r.inkoverTranslucent = 1;
     },
     {0x1.025d3a85f8f89p-1, 0x1.805e0fc65d6eep-3, 0x1.b1eb98dfc2cdcp-1}},
    {"upper half; slope mixed below its centre, ring",
     [](auto& r, auto& s) {
         r.slopeEnable = r.highlightOutlineEnable = 1;
         r.slopeCenter = 0.9f;
         r.highlightSize = 0.05f;
         s.luminosity = 0.05;
     },
     {0x1.27dfac7bf01bfp-2, 0x1.1a6f3ad536ed7p-2, 0x1.6afce1c5ac559p-2}},
    {"above the last zone; shaded texture, slope stepped above its centre, the light's disc",
     [](auto& r, auto& s) {
         r.slopeEnable = r.slopeStyle = 1;
         r.colorTextureUse = r.highlightEnable = 2;
         s.luminosity = 0.4;
     },
     {0x1.4714b6b9e2f74p-1, 0x1.0169b1eeebf5cp-1, 0x1.859c0c3e073d4p-2}},
    {"chosen lights, squared; decal, slope stepped below its centre, edge",
     [](auto& r, auto& s) {
         r.useAllLights = 0;
         r.lightPower = r.colorTextureUse = r.slopeEnable = r.slopeStyle = r.edgeEnable = 1;
         r.slopeCenter = 0.9f;
         s.luminosity = -0.4;
     },
     {0x1.e87f510b64c4ep-2, 0x1.f43508a79d056p-3, 0x1.8d983195aee8fp-1}},
    {"chosen lights, cubed",
     [](auto& r, auto& s) {
         r.useAllLights = 0;
         r.lightPower = 2;
         s.luminosity = -0.4;
     },
     {0x1.2ddd01687c178p-2, 0x1.721db337be7b4p-2, 0x1.8ffb4534ebf18p-2}},
};

template <class Number>
void set(Number* vector, Vec value) {
    for (unsigned i = 0; i < 3; ++i)
        vector[i] = static_cast<Number>(value[i]);
}

/// The record that the examples change.
Record exampleRecord() {
    Record record = newRecord(identity<HostSurfaceId>(1));
    replaceZones(*record, blendingZones);
    Zone& low = *record->zoneList;
    low.accountLights = low.next->accountLights = 1;
    low.accountLightOpac = 0.35f;
    low.next->accountLightOpac = 0.28f;
    chooseLights(*record, {"Rim", "Ambient", "Key"});
    set(record->slopeTopColor, {0.9, 0.2, 0.6});
    set(record->slopeBottomColor, {0.1, 0.7, 0.3});
    record->slopeTopOpacity = 0.3f;
    record->slopeBottomOpacity = 0.4f;
    record->slopeCenter = 0.55f;
    record->highlightOpacity = 0.41f;
    set(record->highlightColor, {0.8, 0.9, 0.7});
    record->highlightOutlineOpacity = 0.35f;
    set(record->highlightOutlineColor, {0.15, 0.05, 0.25});
    record->edgeCoverage = 0.16f;
    record->edgeSharpness = 0.31f;
    set(record->edgeColor, {0.6, 0.1, 0.9});
    return record;
}

TEST(Arithmetic, WorkedExamplesHoldToTheLastBit) {
    FakeHost host;
    host.ambient = {0.11, 0.13, 0.17};
    host.lights = {{"Key", {0.31, 0.27, 0.22}, {-0.36, -0.48, -0.8}, true, {0.9, 0.8, 0.3}},
                   {"Rim", {0.13, 0.19, 0.29}, {0.6, -0.8, 0.0}}};
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
    for (const float force : {0.0f, 0.3f, 0.7f, 1.0f}) {
        const Vec before = {0.1, 0.2, 0.7};
        HostSample sample = upwardSample();
        sample.luminosity = before[0];
        sample.diffuse = before[1];
        sample.specular = before[2];
        record->forceColor = force;
        Evaluate(record.get(), &sample);
        Vec after;
        for (unsigned i = 0; i < 3; ++i) {
            const double forced = static_cast<double>(i == 0 ? force : 0.0f);
            const volatile double kept = static_cast<double>(1.0f - force) * before[i] + forced;
            const volatile auto rounded = static_cast<float>(kept);  // in memory, so for sure
            after[i] = static_cast<double>(rounded);
        }
        EXPECT_EQ((Vec{sample.luminosity, sample.diffuse, sample.specular}), after);
    }
}

TEST(Arithmetic, OverlaysAtTheirBoundaries) {
    ShaderInstance record;
    const auto painted = [&](void (*apply)(const ShaderInstance&, HostSample&), double value) {
        HostSample sample = upwardSample({0.5, 0.5, 0.5});
        sample.worldNormal[1] = 2.0 * value - 1.0;
        sample.cosine = value;
        apply(record, sample);
        return sample.color[0];
    };
    record.slopeTopOpacity = 1.0f;  // white above; half black below
    const double mean = 0.25 * 0.5 + 0.75 * 0.5;
    const struct {
        double slope;
        int style;
        float center;
        double color;
    } slopes[] = {{0.75, 1, 0.75f, 1.0}, {std::nextafter(0.75, 0.0), 1, 0.75f, 0.25},
                  {nan, 1, 0.75f, 0.25}, {0.5, 0, 0.5f, mean},
                  {-0.5, 0, 0.5f, 0.25},  // a normal longer than 1
                  {1.0, 0, 1.0f, 1.0},    // no division at the centre
                  {0.0, 0, 0.0f, mean}};
    for (const auto& c : slopes) {
        record.slopeStyle = c.style;
        record.slopeCenter = c.center;
        EXPECT_EQ(painted(applySlope, c.slope), c.color) << c.slope << ", " << c.center;
    }
    EXPECT_TRUE(std::isnan(painted(applySlope, nan)));

    record.edgeCoverage = 0.25f;
    for (const auto& [cosine, sharpness, color] : {std::tuple{std::nextafter(0.25, 0.0), 1.0f, 0.0},
                                                   {0.25, 1.0f, 0.5},
                                                   {0.25, 0.5f, 0.0},
                                                   {0.4375, 0.5f, 0.25},
                                                   {0.625, 0.5f, 0.5}}) {
        record.edgeSharpness = sharpness;
        EXPECT_EQ(painted(applyEdge, cosine), color) << cosine << ", " << sharpness;
    }
    EXPECT_TRUE(std::isnan(painted(applyEdge, nan)));
}

TEST(Arithmetic, DistancesAreSingle) {
    const double zero[3] = {0, 0, 0}, one[3] = {1, 1, 1};
    EXPECT_EQ(ddist(zero, one), static_cast<double>(1.73205080757f));
}

}  // namespace
}  // namespace tavora::testing
