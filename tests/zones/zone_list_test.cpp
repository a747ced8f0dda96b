#include "zones/zone_list.h"

#include <algorithm>
#include <cmath>

#include "tests/support/heap.h"
#include "tests/support/records.h"

namespace tavora::testing {
namespace {

using Positions = std::vector<float>;
const double above = 0.25 + 1e-12, below = 0.25 - 1e-12;  // both 0.25 as a single

Positions positionsOf(const ShaderInstance& record) {
    Positions positions;
    for (const Zone& zone : zonesOf(record))
        positions.push_back(zone.position);
    return positions;
}

TEST(ZoneList, AddsInOrderByTheUnroundedPosition) {
    for (const auto& [position, place] :
         {std::pair{0.6, 3}, {0.25, 1}, {above, 2}, {0.0, 1}, {-1e-12, 0}, {1.0, 4}}) {
        const Record record = newRecord();
        ASSERT_EQ(addZone(record.get(), position, 0), 1) << position;
        const Zone* zone = record->zoneList;
        for (int i = 0; i < place; ++i)
            zone = zone->next;
        EXPECT_TRUE(record->selectedZone == zone && record->zoneCursor == zone) << position;
        EXPECT_EQ(zone->position, static_cast<float>(position));
        EXPECT_EQ(zonesOf(*record).size(), 6u);
    }
}

TEST(ZoneList, ANewZoneIsTheMeanOfBothNeighboursOrPlain) {
    const Record record = newRecord();
    const Zone low = {{0.1f, 0.2f, 0.4f}, 0.25f, 0.5f, 0, 0.25f, 2.0f, 0.0f, 0, 1, 1.0f};
    const Zone high = {{0.7f, 0.7f, 0.7f}, 1.0f, 1.0f, 0, 1.0f, 1.0f, 0.5f, 1, 0, 0.0f, 1};
    replaceZones(*record, {low, high});
    ASSERT_EQ(addZone(record.get(), 0.5, 1), 1);
    Zone expected = {{}, 0.5f, 0.75f, 1, 0.625f, 1.5f, 0.25f, 0, 0, 0.5f};
    for (int i = 0; i < 3; ++i)
        expected.color[i] = (low.color[i] + high.color[i]) * 0.5f;
    const auto valuesOf = [](const Zone& zone) { return bytesOf(zone).substr(0, zoneSize); };
    EXPECT_EQ(valuesOf(*record->selectedZone), valuesOf(expected));
    ASSERT_EQ(addZone(record.get(), 0.0, 0), 1);
    EXPECT_EQ(valuesOf(*record->zoneList), valuesOf({{0.3f, 0.5f, 0.7f}, 0, 1, 0, 1, 1}));
}

TEST(ZoneList, RefusesWhatWouldBreakTheOrderAndKeepsTheSelection) {
    const Record record = newRecord();
    ASSERT_EQ(addZone(record.get(), 0.6, 1), 1);
    const Zone* selected = record->selectedZone;
    const Positions before = positionsOf(*record);
    for (const double beside : {0.55, 0.65, 1.01})
        EXPECT_EQ(addZone(record.get(), beside, 1), 0) << beside;
    EXPECT_EQ(addZone(record.get(), std::nextafter(1.0, 2.0), 0), 0) << "above the last zone";
    for (const double end : {-1.0, 0.2, 1.0, 2.0})
        EXPECT_EQ(deleteZone(record.get(), end), 0) << end;
    const AllocationWatch noMemory(0);
    EXPECT_EQ(addZone(record.get(), 0.1, 0), 0);
    EXPECT_EQ(positionsOf(*record), before);
    EXPECT_EQ(record->selectedZone, selected);
}

TEST(ZoneList, DeletesTheZoneAtOrBelow) {
    const Record record = newRecord();
    const long live = liveAllocations;
    EXPECT_EQ(deleteZone(record.get(), below), 0);
    ASSERT_EQ(deleteZone(record.get(), 0.25), 1);
    EXPECT_EQ(liveAllocations, live - 1);
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
    const Record record = newRecord();
    for (const auto& [position, selected] : {std::pair{0.6, 0.5f},
                                             {-1.0, 0.5f},
                                             {0.25, 0.25f},
                                             {below, 0.0f},
                                             {1.0, 0.75f},
                                             {0.0, 0.0f},
                                             {7.0, 0.75f}}) {
        EXPECT_EQ(moveZone(record.get(), position), record->selectedZone);
        EXPECT_EQ(record->selectedZone->position, selected) << position;
    }
}

TEST(ZoneList, AnySequenceOfOperationsKeepsTheOrder) {
    std::mt19937 random;
    const auto upTo = [&](unsigned most) { return static_cast<int>(random() % (most + 1)); };
    const Record record = newRecord();
    for (int step = 0; step < 4000; ++step) {
        // Few distinct positions, so that equal ones meet often.
        const double position = (upTo(22) - 1) / 20.0;
        const std::size_t size = zonesOf(*record).size();
        const int add = upTo(1), blend = upTo(1);
        const int done =
            add ? addZone(record.get(), position, blend) : deleteZone(record.get(), position);
        moveZone(record.get(), position);
        const std::vector<Zone> zones = zonesOf(*record);
        ASSERT_EQ(zones.size(), add ? size + unsigned(done) : size - unsigned(done));
        EXPECT_TRUE(std::is_sorted(zones.begin(), zones.end(), [](const Zone& a, const Zone& b) {
            return a.position < b.position;
        }));
        EXPECT_TRUE(!zones.front().blend && !zones.back().blend);
        EXPECT_TRUE(std::adjacent_find(zones.begin(), zones.end(), [](auto& a, auto& b) {
                        return a.blend && b.blend;
                    }) == zones.end());
        EXPECT_NE(record->selectedZone->next, nullptr);
    }
}

TEST(ZoneList, OperationsLiveWithEmptyAndSingleLists) {
    const Record record = newRecord();
    replaceZones(*record, {greyZone(0.5f, 1.0f)});
    EXPECT_EQ(deleteZone(record.get(), 0.5), 0);
    EXPECT_EQ(moveZone(record.get(), 0.9), record->zoneList);
    EXPECT_EQ(addZone(record.get(), 0.9, 0), 0);
    replaceZones(*record, {});
    EXPECT_EQ(deleteZone(record.get(), 0.5), 0);
    EXPECT_EQ(moveZone(record.get(), 0.5), nullptr);
    EXPECT_EQ(addZone(record.get(), 0.5, 0), 1);
    EXPECT_EQ(positionsOf(*record), Positions{0.5f});
}

}  // namespace
}  // namespace tavora::testing
