#include "zones/zone_lookup.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
const Vec black = {0, 0, 0}, blue = {0, 0, 1}, green = {0, 1, 0}, red = {1, 0, 0};

/// All channels; over the sample, or as a preview without one.
Vec lookUp(const Record& record, double intensity, const HostSample* sample = nullptr) {
    Vec color;
    for (int i = 0; i < 3; ++i) {
        color[unsigned(i)] = evalColor(record.get(), intensity, i, sample != nullptr, sample);
    }
    return color;
}
Vec characteristics() {
    return {gradAlpha, gradSat, gradBright};
}

Record blendingRecord() {
    Record record = newRecord();
    replaceZones(*record, {zoneOf(0.1f, {0.46, 0.88, 0.75}, 0.42f, 0.61f, 0.28f),
                           zoneOf(0.45f, {0.5, 0.5, 0.5}, 0.24f, 0.2f, 0.3f, 1),
                           zoneOf(0.8f, {0.52, 0.43, 0.68}, 0.11f, 0.68f, 0.32f)});
    return record;
}

TEST(ZoneLookup, StepsAreClosedAbove) {
    const Record record = newRecord();
    const struct {
        double intensity;
        Vec color;
        float cursor;
    } cases[] = {{-3.0, black, 0.0f},
                 {0.25, black, 0.0f},
                 {std::nextafter(0.25, 1.0), blue, 0.25f},
                 {0.5, blue, 0.25f},
                 {0.6, green, 0.5f},
                 {1.0, red, 0.75f},
                 {std::nextafter(1.0, 2.0), {1, 1, 1}, 1.0f},
                 {nan, black, 0.0f}};
    for (const auto& c : cases) {
        EXPECT_EQ(lookUp(record, c.intensity), c.color) << c.intensity;
        EXPECT_EQ(record->zoneCursor->position, c.cursor) << c.intensity;
    }
}

// Worked out from the formulas, outside this program, each operation in exact
// arithmetic and then rounded to double or to single as it must be. Never
// record them anew from the code.
TEST(ZoneLookup, WorkedExamplesHoldToTheLastBit) {
    const struct {
        double intensity;
        Vec preview, overSample, characteristics;
        float cursor;
    } cases[] = {{0.3,
                  {0x1.8b4ce5e519077p-2, 0x1.c7c6b168b0651p-2, 0x1.bab647ee7effp-2},
                  {0x1.ba94ap-2, 0x1.749d16p-1, 0x1.74f09ep-1},
                  {0x1.4dd478p-2, 0x1.2b23aep-2, 0x1.432fdcp-1},
                  0.1f},
                 {0.55,
                  {0x1.ef0af4p-2, 0x1.688cacp-1, 0x1.71ff94p-1},
                  {0x1.c74b2ep-2, 0x1.6edf8cp-1, 0x1.73ce1cp-1},
                  {0x1.dfc98ap-3, 0x1.37429cp-2, 0x1.4dcaeap-1},
                  0.45f},
                 {0.95,
                  {0x1.75227a8e60809p-2, 0x1.6114a76c1e369p-2, 0x1.98c94994ab1d9p-2},
                  {0x1.4bfb16p-2, 0x1.f81d7ep-2, 0x1.65460ap-1},
                  {0x1.c28f5cp-4, 0x1.47ae14p-2, 0x1.5c28f6p-1},
                  0.8f}};
    const HostSample sample = upwardSample({0.3, 0.5, 0.7});
    const Record record = blendingRecord();
    for (const auto& c : cases) {
        EXPECT_EQ(lookUp(record, c.intensity), c.preview) << c.intensity;
        EXPECT_EQ(lookUp(record, c.intensity, &sample), c.overSample) << c.intensity;
        EXPECT_EQ(characteristics(), c.characteristics) << c.intensity;
        EXPECT_EQ(record->zoneCursor->position, c.cursor);
    }
}

TEST(ZoneLookup, IrregularListsAreLookedUpAllTheSame) {
    const Record record = newRecord();
    const HostSample sample = upwardSample();
    const auto greyAt = [&](double intensity, const std::vector<Zone>& zones) {
        replaceZones(*record, zones);
        return lookUp(record, intensity)[0];
    };
    replaceZones(*record, {});
    EXPECT_EQ(lookUp(record, 0.5, &sample), black);
    EXPECT_EQ(characteristics(), (Vec{0, 1, 1}));
    EXPECT_EQ(record->zoneCursor, nullptr);
    for (const double x : {0.0, 0.5, nan})
        EXPECT_EQ(greyAt(x, {greyZone(0.25f, 0.5f)}), 0.5);

    // Blend zones at the ends lack a neighbour and act as ordinary zones.
    const std::vector<Zone> blends = {greyZone(0.25f, 0.125f, 1), greyZone(0.75f, 0.5f, 1)};
    EXPECT_EQ(greyAt(0.0, blends), 0.125);
    EXPECT_EQ(greyAt(0.5, blends), 0.125);
    EXPECT_EQ(greyAt(0.9, blends), 0.5);

    // Equal positions, and positions that descend, never divide by zero.
    const Zone blend = greyZone(0.25f, 1.0f, 1), high = greyZone(0.75f, 0.5f);
    EXPECT_EQ(greyAt(0.25, {greyZone(0.25f, 0.125f), blend, high}), 0.5);
    EXPECT_EQ(greyAt(0.2, {greyZone(0.9f, 0.125f), blend, high}), 0.125);
}

}  // namespace
}  // namespace tavora::testing
