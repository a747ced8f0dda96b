#include "zones/zone_lookup.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/support/fake_host.h"
#include "tests/support/single.h"

namespace tavora::testing {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

Vec preview(ShaderInstance& record, double intensity) {
    Vec color;
    for (int i = 0; i < 3; ++i) {
        color[static_cast<unsigned>(i)] = evalColor(&record, intensity, i, 0, nullptr);
    }
    return color;
}

Vec overSample(ShaderInstance& record, double intensity, const HostSample& sample) {
    Vec color;
    for (int i = 0; i < 3; ++i) {
        color[static_cast<unsigned>(i)] = evalColor(&record, intensity, i, 1, &sample);
    }
    return color;
}

Vec characteristics() {
    return {gradAlpha, gradSat, gradBright};
}

const Vec black = {0, 0, 0}, blue = {0, 0, 1}, green = {0, 1, 0}, red = {1, 0, 0},
          white = {1, 1, 1};

TEST(ZoneLookup, StepsAreClosedAbove) {
    Record record = newRecord();
    const struct {
        double intensity;
        Vec color;
        float cursor;
    } cases[] = {
        {-3.0, black, 0.0f},
        {0.25, black, 0.0f},
        {std::nextafter(0.25, 1.0), blue, 0.25f},
        {0.5, blue, 0.25f},
        {std::nextafter(0.5, 1.0), green, 0.5f},
        {1.0, red, 0.75f},
        {std::nextafter(1.0, 2.0), white, 1.0f},
        {nan, black, 0.0f},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(preview(*record, c.intensity), c.color) << c.intensity;
        EXPECT_EQ(record->zoneCursor->position, c.cursor) << c.intensity;
    }
}

TEST(ZoneLookup, OpacityLaysTheZoneOverTheSample) {
    Record record = newRecord();
    Zone& zone = *record->zoneList->next->next;
    zone.opacity = 0.25f;
    zone.sat = 0.5f;
    zone.bright = 2.0f;
    const Vec color = overSample(*record, 0.6, upwardSample({0.2, 0.4, 0.6}));
    EXPECT_EQ(color, (Vec{single(0.15), single(0.55), single(0.45)}));
    EXPECT_EQ(characteristics(), (Vec{0.25, 0.5, 2.0}));
}

TEST(ZoneLookup, PreviewAppliesBrightnessAndSaturation) {
    Record record = newRecord();
    Zone& zone = *record->zoneList->next->next;
    zone.sat = 0.0f;
    zone.bright = 0.5f;
    const double third = single(1.0 / 3.0);
    EXPECT_EQ(preview(*record, 0.6), (Vec{0.5 * third, 0.5 * third, 0.5 * third}));
    zone.sat = 0.25f;
    EXPECT_EQ(preview(*record, 0.6), (Vec{0.375 * third, 0.375 * third + 0.125, 0.375 * third}));
}

/// Ordinary, blend and ordinary zones of random settings, the record around
/// them, and the formulas over them.
struct BlendCase {
    Record record = newRecord();
    Zone lower, blend, upper;

    explicit BlendCase(Values& values) {
        for (Zone* zone : {&lower, &blend, &upper}) {
            for (float& channel : zone->color)
                channel = values.fraction();
            zone->opacity = values.fraction();
            zone->sat = values.fraction(0.0, 1.5);
            zone->bright = values.fraction(0.0, 1.5);
        }
        lower.position = values.fraction(0.0, 0.3);
        blend.position = values.fraction(0.4, 0.6);
        upper.position = values.fraction(0.7, 1.0);
        blend.blend = 1;
        replaceZones(*record, {lower, blend, upper});
    }

    static double weight(const Zone& from, const Zone& to, double x) {
        const double start = from.position;
        const double u = (x - start) / (to.position - start);
        return u * u * (3.0 - 2.0 * u);
    }
    double middle(int channel) const {
        const double ratio = blend.opacity;
        return single(single(ratio * upper.color[channel]) +
                      single(single(1.0 - ratio) * lower.color[channel]));
    }
    static double over(const Zone& zone, int channel, double base) {
        const double opacity = zone.opacity;
        return single(1.0 - opacity) * base + single(opacity * zone.color[channel]);
    }
    static double grey(const Zone& zone) {
        const double r = zone.color[0];
        const double sum = single(single(r + zone.color[1]) + zone.color[2]);
        return single(sum / 3.0) * single(1.0 - static_cast<double>(zone.sat));
    }
};

TEST(ZoneLookup, BlendsRoundExactlyWhereTheyShould) {
    Values values(3);
    for (int round = 0; round < 500; ++round) {
        BlendCase c(values);
        const double base = values.real(0.0, 2.0);
        const HostSample sample = upwardSample({base, base, base});
        for (int i = 0; i < 3; ++i) {
            const double middle = c.middle(i);
            const double below = values.real(0.3, 0.4);
            const double s = BlendCase::weight(c.lower, c.blend, below);
            EXPECT_EQ(evalColor(c.record.get(), below, i, 1, &sample),
                      single((1.0 - s) * BlendCase::over(c.lower, i, base) + s * middle));
            EXPECT_EQ(c.record->zoneCursor->position, c.lower.position);
            const double mixed = (1.0 - s) * c.lower.color[i] + s * middle;
            EXPECT_EQ(evalColor(c.record.get(), below, i, 0, nullptr),
                      c.lower.bright * (BlendCase::grey(c.lower) + c.lower.sat * mixed));

            const double above = values.real(0.6, 0.7);
            const double t = BlendCase::weight(c.blend, c.upper, above);
            EXPECT_EQ(evalColor(c.record.get(), above, i, 1, &sample),
                      single((1.0 - t) * middle + t * BlendCase::over(c.upper, i, base)));
            EXPECT_EQ(c.record->zoneCursor->position, c.blend.position);
            EXPECT_EQ(evalColor(c.record.get(), above, i, 0, nullptr),
                      single((1.0 - t) * middle + t * c.upper.color[i]));

            // The highest band has no blend: a step, and unrounded in a preview.
            const double bright = c.upper.bright;
            EXPECT_EQ(evalColor(c.record.get(), 2.0, i, 1, &sample),
                      single(BlendCase::over(c.upper, i, base)));
            EXPECT_EQ(evalColor(c.record.get(), 2.0, i, 0, nullptr),
                      bright * (BlendCase::grey(c.upper) +
                                single(static_cast<double>(c.upper.sat) * c.upper.color[i])));
        }
    }
}

TEST(ZoneLookup, CharacteristicsRunFromNeighbourToMeanToNeighbour) {
    Values values(4);
    for (int round = 0; round < 200; ++round) {
        BlendCase c(values);
        c.record->zoneList->next->opacity = c.record->zoneList->next->sat = 7.0f;
        const auto expected = [&](float Zone::*field, double x) {
            const double low = c.lower.*field, high = c.upper.*field;
            const double half = single(low + high) / 2.0;
            if (x < c.blend.position) {
                const double s = BlendCase::weight(c.lower, c.blend, x);
                return single(low * (1.0 - s) + s * half);
            }
            const double s = BlendCase::weight(c.blend, c.upper, x);
            return single(half * (1.0 - s) + s * high);
        };
        for (const double x : {values.real(0.3, 0.4), values.real(0.6, 0.7)}) {
            preview(*c.record, x);
            EXPECT_EQ(characteristics(), (Vec{expected(&Zone::opacity, x), expected(&Zone::sat, x),
                                              expected(&Zone::bright, x)}));
        }
    }
}

TEST(ZoneLookup, BlendsAreContinuousOverTheSample) {
    Values values(5);
    for (int round = 0; round < 100; ++round) {
        BlendCase c(values);
        const HostSample sample = upwardSample({values.real(), values.real(), values.real()});
        const auto jump = [&](double x) {
            const Vec before = overSample(*c.record, x, sample);
            const Vec gradBefore = characteristics();
            const Vec after = overSample(*c.record, std::nextafter(x, 2.0), sample);
            const Vec gradAfter = characteristics();
            double most = 0.0;
            for (unsigned i = 0; i < 3; ++i) {
                most = std::max(
                    {most, std::abs(before[i] - after[i]), std::abs(gradBefore[i] - gradAfter[i])});
            }
            return most;
        };
        EXPECT_LT(jump(c.blend.position), 1e-6);
        EXPECT_LT(jump(c.upper.position), 1e-6);
        for (int step = 0; step < 8; ++step) {
            EXPECT_LT(jump(values.real(c.lower.position, c.upper.position)), 1e-6);
        }
    }
}

TEST(ZoneLookup, ABlendAddedBetweenOpaqueZonesReachesTheUpperColourAtItsMiddle) {
    Record record = newRecord();
    Zone blend;
    blend.blend = 1;
    blend.position = 0.625f;
    blend.opacity = 0.5f;
    std::vector<Zone> zones = zonesOf(*record);
    zones.insert(zones.begin() + 3, blend);
    replaceZones(*record, zones);
    EXPECT_EQ(preview(*record, 0.5), blue);
    EXPECT_EQ(preview(*record, 0.5625), (Vec{0.25, 0.75, 0}));
    EXPECT_EQ(preview(*record, 0.625), (Vec{0.5, 0.5, 0}));
    EXPECT_EQ(preview(*record, 0.6875), (Vec{0.75, 0.25, 0}));
    EXPECT_EQ(preview(*record, 0.75), red);
}

TEST(ZoneLookup, IrregularListsAreLookedUpAllTheSame) {
    Record record = newRecord();
    Zone low = greyZone(0.25f, 0.125f), high = greyZone(0.75f, 0.5f);
    const HostSample sample = upwardSample({1, 1, 1});

    replaceZones(*record, {});
    EXPECT_EQ(overSample(*record, 0.5, sample), black);
    EXPECT_EQ(characteristics(), (Vec{0, 1, 1}));
    EXPECT_EQ(record->zoneCursor, nullptr);

    replaceZones(*record, {low});
    for (const double x : {0.0, 0.5, nan})
        EXPECT_EQ(preview(*record, x)[0], 0.125);

    // Blend zones at the ends lack a neighbour and act as ordinary zones.
    low.blend = high.blend = 1;
    replaceZones(*record, {low, high});
    EXPECT_EQ(preview(*record, 0.0)[0], 0.125);
    EXPECT_EQ(preview(*record, 0.5)[0], 0.125);
    EXPECT_EQ(preview(*record, 0.9)[0], 0.5);

    // Equal positions, and positions that descend, never divide by zero.
    low.blend = high.blend = 0;
    Zone middle = greyZone(0.25f, 1.0f);
    middle.blend = 1;
    replaceZones(*record, {low, middle, high});
    EXPECT_EQ(preview(*record, 0.25)[0], 0.5) << "already at the blend point";
    low.position = 0.9f;
    replaceZones(*record, {low, middle, high});
    EXPECT_EQ(preview(*record, 0.2)[0], 0.125);

    // Whatever the list, the walk ends and the cursor stands in it.
    Values values(6);
    for (int round = 0; round < 500; ++round) {
        std::vector<Zone> zones(static_cast<unsigned>(values.integer(1, 5)));
        for (Zone& zone : zones) {
            zone.position = values.anyFloat();
            zone.opacity = values.anyFloat();
            zone.blend = values.integer(0, 1);
        }
        replaceZones(*record, zones);
        overSample(*record, static_cast<double>(values.anyFloat()), sample);
        EXPECT_NE(record->zoneCursor, nullptr);
    }
}

}  // namespace
}  // namespace tavora::testing
