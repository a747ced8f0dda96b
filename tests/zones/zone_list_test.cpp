#include "zones/zone_list.h"

#include <algorithm>
#include <cmath>

#include "tests/support/heap.h"
#include "tests/support/records.h"

namespace tavora::testing {
namespace {

/// The positions in percent, blend zones with a "b", the selected zone in brackets.
std::string textOf(const Record& record) {
    std::string text;
    for (const Zone& zone : zonesOf(*record)) {
        const bool selected = zone.next == record->selectedZone->next;
        text += (selected ? " [" : " ") + std::to_string(std::lround(zone.position * 100)) +
                (zone.blend ? "b" : "") + (selected ? "]" : "");
    }
    return text;
}

TEST(ZoneList, AddsDeletesAndSelectsByTheUnroundedPosition) {
    const double above = 0.25 + 1e-12, below = 0.25 - 1e-12;  // both 0.25 as a single
    const struct {
        char operation;
        double position;
        int done;
        const char* after;
    } steps[] = {{'a', 0.6, 1, " 0 25 50 [60] 75 100"},
                 {'s', below, 0, " [0] 25 50 60 75 100"},
                 {'s', 0.25, 0, " 0 [25] 50 60 75 100"},
                 {'s', -1.0, 0, " 0 [25] 50 60 75 100"},
                 {'s', 1.0, 0, " 0 25 50 60 [75] 100"},
                 {'d', below, 0, " 0 25 50 60 [75] 100"},
                 {'d', 1.0, 0, " 0 25 50 60 [75] 100"},
                 {'d', 7.0, 0, " 0 25 50 60 [75] 100"},
                 {'d', -1.0, 0, " 0 25 50 60 [75] 100"},
                 {'d', 0.61, 1, " [0] 25 50 75 100"},
                 {'a', 0.25, 1, " 0 [25] 25 50 75 100"},  // in front of the other
                 {'d', 0.25, 1, " [0] 25 50 75 100"},
                 {'a', above, 1, " 0 25 [25] 50 75 100"},  // behind it
                 {'b', 0.3, 1, " 0 25 25 [30b] 50 75 100"},
                 {'b', 0.28, 0, " 0 25 25 [30b] 50 75 100"},
                 {'b', 0.4, 0, " 0 25 25 [30b] 50 75 100"},
                 {'b', 1.01, 0, " 0 25 25 [30b] 50 75 100"},
                 {'a', std::nextafter(1.0, 2.0), 0, " 0 25 25 [30b] 50 75 100"},
                 {'a', 1.0, 1, " 0 25 25 30b 50 75 [100] 100"},
                 {'b', 0.6, 1, " 0 25 25 30b 50 [60b] 75 100 100"},
                 {'d', 0.55, 0, " 0 25 25 30b 50 [60b] 75 100 100"},  // between two blends
                 {'d', 0.65, 1, " [0] 25 25 30b 50 75 100 100"},
                 {'d', 0.55, 1, " [0] 25 25 30b 75 100 100"},
                 {'a', 0.0, 1, " 0 [0] 25 25 30b 75 100 100"},
                 {'a', -1e-12, 1, " [0] 0 0 25 25 30b 75 100 100"}};
    const Record record = newRecord();
    for (const auto& step : steps) {
        int done = 0;
        const long live = liveAllocations;
        if (step.operation == 's') {
            EXPECT_EQ(moveZone(record.get(), step.position), record->selectedZone);
        } else if (step.operation == 'd') {
            done = deleteZone(record.get(), step.position);
            EXPECT_EQ(liveAllocations, live - done);
        } else {
            done = addZone(record.get(), step.position, step.operation == 'b');
        }
        EXPECT_EQ(done, step.done) << step.operation << step.position;
        EXPECT_EQ(textOf(record), step.after) << step.operation << step.position;
        EXPECT_TRUE(!done || record->zoneCursor == record->selectedZone);
    }
    const AllocationWatch noMemory(0);
    EXPECT_EQ(addZone(record.get(), 0.1, 0), 0);
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
    EXPECT_EQ(textOf(record), " [50]");
}

}  // namespace
}  // namespace tavora::testing
