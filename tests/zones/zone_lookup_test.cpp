#include "zones/zone_lookup.h"

#include <cmath>

#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

const Vec black = {0, 0, 0};

/// All channels of the preview colour.
Vec lookUp(const Record& record, double intensity) {
    return {evalColor(record.get(), intensity, 0, 0, nullptr),
            evalColor(record.get(), intensity, 1, 0, nullptr),
            evalColor(record.get(), intensity, 2, 0, nullptr)};
}

TEST(ZoneLookup, StepsAreClosedAbove) {
    const Record record = newRecord();
    const Vec blue = {0, 0, 1}, green = {0, 1, 0}, red = {1, 0, 0}, white = {1, 1, 1};
    const struct {
        double intensity;
        Vec color;
        float cursor;
    } cases[] = {{-3.0, black, 0.0f}, {0.25, black, 0.0f}, {std::nextafter(0.25, 1.0), blue, 0.25f},
                 {0.5, blue, 0.25f},  {0.6, green, 0.5f},  {std::nextafter(1.0, 2.0), white, 1.0f},
                 {1.0, red, 0.75f},   {nan, black, 0.0f}};
    for (const auto& c : cases) {
        EXPECT_EQ(lookUp(record, c.intensity), c.color) << c.intensity;
        EXPECT_EQ(record->zoneCursor->position, c.cursor) << c.intensity;
    }
}

// Worked out from the formulas, outside this program, each operation in exact
// arithmetic and then rounded to double or to single as it must be. Never
// record them anew from the code.
TEST(ZoneLookup, PreviewsHoldToTheLastBit) {
    const Record record = newRecord();
    replaceZones(*record, blendingZones);
    const std::pair<double, Vec> cases[] = {
        {0.3, {0x1.8b4ce5e519077p-2, 0x1.c7c6b168b0651p-2, 0x1.bab647ee7effp-2}},
        {0.55, {0x1.ef0af4p-2, 0x1.688cacp-1, 0x1.71ff94p-1}},
        {0.95, {0x1.75227a8e60809p-2, 0x1.6114a76c1e369p-2, 0x1.98c94994ab1d9p-2}}};
    for (const auto& [intensity, color] : cases)
        EXPECT_EQ(lookUp(record, intensity), color) << intensity;
}

TEST(ZoneLookup, OneChannelOverASampleIsThatOfAllThree) {
    std::mt19937 random;
    const Record record = newRecord();
    const HostSample sample = upwardSample();
    for (int round = 0; round < 200; ++round) {
        replaceZones(*record, anyZones(round % 5, random));
        float position = 0.0f;
        for (Zone* zone = record->zoneList; zone != nullptr; zone = zone->next)
            zone->position = position += 0.25f;
        Vec all;
        evalColors(record.get(), 0.6, sample, all.data());
        for (int i = 0; i < 3; ++i) {
            const double one = evalColor(record.get(), 0.6, i, 1, &sample);
            EXPECT_EQ(bytesOf(one), bytesOf(all[std::size_t(i)]));
        }
    }
}

TEST(ZoneLookup, IrregularListsAreLookedUpAllTheSame) {
    const Record record = newRecord();
    const auto greyAt = [&](double intensity, const std::vector<Zone>& zones) {
        replaceZones(*record, zones);
        return lookUp(record, intensity)[0];
    };
    Zone elsewhere;
    replaceZones(*record, {});
    record->zoneCursor = &elsewhere;
    EXPECT_EQ(lookUp(record, 0.5), black);
    EXPECT_EQ((Vec{gradAlpha, gradSat, gradBright}), (Vec{0, 1, 1}));
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
