// The list of zones: its edits, and the lookup of a colour.

#include <algorithm>
#include <cmath>

#include "tests/support/fake_host.h"
#include "tests/support/heap.h"
#include "zones/zone_list.h"
#include "zones/zone_lookup.h"

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
    const HostSample sample = upwardSample({0.3, 0.5, 0.7});
    for (const auto& [intensity, color] : cases) {
        EXPECT_EQ(lookUp(record, intensity), color) << intensity;
        Vec all;  // over a sample, one channel is as it is among all three
        evalColors(record.get(), intensity, sample, all.data());
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(evalColor(record.get(), intensity, i, 1, &sample), all[std::size_t(i)]);
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
    const HostSample sample = upwardSample();
    EXPECT_EQ(evalColor(record.get(), 0.5, 0, 1, &sample), 0.0);
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
