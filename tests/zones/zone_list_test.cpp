#include "zones/zone_list.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "tests/support/fake_host.h"
#include "tests/support/single.h"
#include "zones/preview_grid.h"

namespace tavora::testing {
namespace {

std::vector<float> positionsOf(const ShaderInstance& record) {
    std::vector<float> positions;
    for (const Zone& zone : zonesOf(record))
        positions.push_back(zone.position);
    return positions;
}

using Positions = std::vector<float>;
const Positions defaults = {0.0f, 0.25f, 0.5f, 0.75f, 1.0f};
const double above = 0.25 + 1e-12;  // rounds to 0.25 in single precision
const double below = 0.25 - 1e-12;

TEST(ZoneList, AddsInOrderByTheUnroundedPosition) {
    const struct {
        double position;
        Positions expected;
        std::size_t added;
    } cases[] = {
        {0.6, {0.0f, 0.25f, 0.5f, 0.6f, 0.75f, 1.0f}, 3},
        {0.25, {0.0f, 0.25f, 0.25f, 0.5f, 0.75f, 1.0f}, 1},
        {above, {0.0f, 0.25f, 0.25f, 0.5f, 0.75f, 1.0f}, 2},
        {0.0, {0.0f, 0.0f, 0.25f, 0.5f, 0.75f, 1.0f}, 1},
        {-1e-12, {-1e-12f, 0.0f, 0.25f, 0.5f, 0.75f, 1.0f}, 0},
        {1.0, {0.0f, 0.25f, 0.5f, 0.75f, 1.0f, 1.0f}, 4},
    };
    for (const auto& c : cases) {
        Record record = newRecord();
        ASSERT_EQ(addZone(record.get(), c.position, 0), 1) << c.position;
        EXPECT_EQ(positionsOf(*record), c.expected) << c.position;
        const Zone* added = record->zoneList;
        for (std::size_t i = 0; i < c.added; ++i)
            added = added->next;
        EXPECT_EQ(record->selectedZone, added) << c.position;
        EXPECT_EQ(record->zoneCursor, added) << c.position;
    }
}

TEST(ZoneList, ANewZoneIsTheMeanOfBothNeighboursOrPlain) {
    Values values(1);
    for (int round = 0; round < 100; ++round) {
        Record record = newRecord();
        std::vector<Zone> ends(2);
        for (Zone& zone : ends) {
            for (float* field : {&zone.color[0], &zone.color[1], &zone.color[2], &zone.bright,
                                 &zone.opacity, &zone.sat, &zone.trans, &zone.accountLightOpac}) {
                *field = values.fraction(0.0, 2.0);
            }
            zone.accountLights = zone.accountLume = zone.reserved = 1;
        }
        ends[0].position = 0.25f;
        ends[1].position = 1.0f;
        replaceZones(*record, ends);
        ASSERT_EQ(addZone(record.get(), 0.5, round % 2), 1);
        const Zone& zone = *record->selectedZone;
        const auto expectMean = [&](auto field) {
            EXPECT_EQ(field(zone), single((field(ends[0]) + field(ends[1])) / 2.0));
        };
        for (int i = 0; i < 3; ++i) {
            expectMean([i](const Zone& z) { return static_cast<double>(z.color[i]); });
        }
        expectMean([](const Zone& z) { return static_cast<double>(z.bright); });
        expectMean([](const Zone& z) { return static_cast<double>(z.opacity); });
        expectMean([](const Zone& z) { return static_cast<double>(z.sat); });
        expectMean([](const Zone& z) { return static_cast<double>(z.trans); });
        expectMean([](const Zone& z) { return static_cast<double>(z.accountLightOpac); });
        EXPECT_EQ(zone.accountLights + zone.accountLume + zone.reserved, 0);
        EXPECT_EQ(zone.blend, round % 2);

        ASSERT_EQ(addZone(record.get(), 0.0, 0), 1);
        const Zone& first = *record->zoneList;
        EXPECT_EQ(first.color[0], 0.3f);
        EXPECT_EQ(first.color[1], 0.5f);
        EXPECT_EQ(first.color[2], 0.7f);
        EXPECT_EQ(first.opacity * first.bright * first.sat * first.accountLightOpac, 1.0f);
        EXPECT_EQ(first.trans, 0.0f);
    }
}

TEST(ZoneList, RefusesWhatWouldBreakTheOrder) {
    Record record = newRecord();
    ASSERT_EQ(addZone(record.get(), 0.6, 1), 1);
    const Zone* selected = record->selectedZone;
    const Positions before = positionsOf(*record);
    EXPECT_EQ(addZone(record.get(), 0.55, 1), 0) << "below a blend zone";
    EXPECT_EQ(addZone(record.get(), 0.65, 1), 0) << "above a blend zone";
    EXPECT_EQ(addZone(record.get(), 1.01, 1), 0) << "blend above the last zone";
    EXPECT_EQ(addZone(record.get(), std::nextafter(1.0, 2.0), 0), 0) << "above the last zone";
    {
        const AllocationWatch noMemory(0);
        EXPECT_EQ(addZone(record.get(), 0.1, 0), 0);
    }
    EXPECT_EQ(positionsOf(*record), before);
    EXPECT_EQ(record->selectedZone, selected);
}

TEST(ZoneList, DeletesTheZoneAtOrBelowButNeverAnEnd) {
    Record record = newRecord();
    for (const double position : {-1.0, 0.1, below, 1.0, 2.0}) {
        const Zone* selected = record->selectedZone = record->zoneList->next;
        EXPECT_EQ(deleteZone(record.get(), position), 0) << position;
        EXPECT_EQ(record->selectedZone, selected);
    }
    ASSERT_EQ(deleteZone(record.get(), 0.25), 1);
    EXPECT_EQ(positionsOf(*record), (Positions{0.0f, 0.5f, 0.75f, 1.0f}));
    EXPECT_EQ(record->selectedZone, record->zoneList);
    EXPECT_EQ(record->zoneCursor, record->zoneList);

    addZone(record.get(), 0.3, 1);
    addZone(record.get(), 0.6, 1);
    EXPECT_EQ(deleteZone(record.get(), 0.55), 0) << "between two blend zones";
    EXPECT_EQ(deleteZone(record.get(), 0.65), 1) << "a blend zone";
    EXPECT_EQ(deleteZone(record.get(), 0.55), 1) << "between a blend and an ordinary zone";
    EXPECT_EQ(positionsOf(*record), (Positions{0.0f, 0.3f, 0.75f, 1.0f}));
}

TEST(ZoneList, SelectsByBand) {
    Record record = newRecord();
    const auto selectedAt = [&](double position) {
        const Zone* zone = moveZone(record.get(), position);
        EXPECT_EQ(zone, record->selectedZone);
        return zone->position;
    };
    EXPECT_EQ(selectedAt(0.6), 0.5f);
    EXPECT_EQ(selectedAt(-1.0), 0.5f) << "below the first zone the selection stays";
    EXPECT_EQ(selectedAt(0.25), 0.25f);
    EXPECT_EQ(selectedAt(below), 0.0f);
    EXPECT_EQ(selectedAt(0.0), 0.0f);
    EXPECT_EQ(selectedAt(1.0), 0.75f);
    EXPECT_EQ(selectedAt(7.0), 0.75f);
}

TEST(ZoneList, AnySequenceOfOperationsKeepsTheOrder) {
    Values values(2);
    for (int run = 0; run < 20; ++run) {
        Record record = newRecord();
        for (int step = 0; step < 200; ++step) {
            // Few distinct positions, so that equal ones meet often.
            const double position = values.integer(-1, 21) / 20.0;
            const int choice = values.integer(0, 4);
            const std::size_t size = zonesOf(*record).size();
            std::size_t expected = size;
            if (choice < 3)
                expected += static_cast<unsigned>(addZone(record.get(), position, choice % 2));
            else if (choice == 3)
                expected -= static_cast<unsigned>(deleteZone(record.get(), position));
            else
                EXPECT_NE(moveZone(record.get(), position)->next, nullptr);

            const std::vector<Zone> zones = zonesOf(*record);
            ASSERT_EQ(zones.size(), expected);
            EXPECT_TRUE(std::is_sorted(zones.begin(), zones.end(),
                                       [](auto& a, auto& b) { return a.position < b.position; }));
            EXPECT_EQ(zones.back().blend, 0);
            for (std::size_t i = 1; i < zones.size(); ++i) {
                EXPECT_FALSE(zones[i - 1].blend != 0 && zones[i].blend != 0);
            }
            EXPECT_NE(record->selectedZone->next, nullptr);
        }
    }
}

TEST(ZoneList, OperationsLiveWithEmptyAndSingleLists) {
    Record record = newRecord();
    replaceZones(*record, {greyZone(0.5f, 1.0f)});
    Zone* only = record->selectedZone;
    EXPECT_EQ(deleteZone(record.get(), 0.5), 0);
    EXPECT_EQ(moveZone(record.get(), 0.9), only);
    EXPECT_EQ(addZone(record.get(), 0.9, 0), 0);

    replaceZones(*record, {});
    EXPECT_EQ(deleteZone(record.get(), 0.5), 0);
    EXPECT_EQ(moveZone(record.get(), 0.5), nullptr);
    EXPECT_EQ(addZone(record.get(), 0.5, 0), 1);
    EXPECT_EQ(positionsOf(*record), Positions{0.5f});
}

TEST(PreviewGrid, IsACheckerboardInsideABlackBorder) {
    for (int creations = 0; creations < 2; ++creations) {
        newRecord();
        for (int x = 0; x < gridColumns; ++x) {
            for (int row = 0; row < gridRows; ++row) {
                const bool white = x > 0 && row < 20 && ((x + 4) / 5 + row / 5) % 2 == 1;
                ASSERT_EQ(grid[x][row], white ? 255 : 0) << x << ", " << row;
            }
        }
    }
}

}  // namespace
}  // namespace tavora::testing
