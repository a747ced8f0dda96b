#include "plugin/instance_life.h"

#include <cstring>
#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "tests/support/fake_host.h"
#include "tests/support/state_items.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

TEST(InstanceLife, ANewRecordHoldsTheDefaults) {
    Record record = newRecord(identity<HostSurfaceId>(7));
    EXPECT_EQ(record->context, identity<HostSurfaceId>(7));
    EXPECT_EQ(record->selectedZone, record->zoneList);
    EXPECT_EQ(record->activeTab, 0);
    EXPECT_EQ(record->transparencyUsed, 0);
    EXPECT_STREQ(record->description, "");

    // All stored settings at once, in block order.
    std::string text;
    for (const StateItem& item : save(record.get())) {
        float number;
        std::memcpy(&number, &item.bits, sizeof number);
        char buffer[32];
        if (item.kind == 'i') {
            std::snprintf(buffer, sizeof buffer, "%d ", static_cast<int>(item.bits));
        } else {
            std::snprintf(buffer, sizeof buffer, "%.9g ", static_cast<double>(number));
        }
        text += buffer;
    }
    const std::string zoneEnd = "1 0 1 1 0 0 1 0 0 ";
    EXPECT_EQ(text,
              "6 0 0.0199999996 1 0 0 0 0 0.119999997 1 1 1 1 "       // outline, highlight
              "0 0.200000003 0.5 0 0 0 0 1 1 1 0 0 0 0.5 0.5 0 0.5 "  // edge, slope
              "5 0 0 0 0 " +
                  zoneEnd + "0 0 1 0.25 " + zoneEnd + "0 1 0 0.5 " + zoneEnd + "1 0 0 0.75 " +
                  zoneEnd + "1 1 1 1 " + zoneEnd +
                  "0 1 0 0 0 0 0 0 0 1 1 0 0 1 "  // lights, force, ink-over, use
                  "0 0 0 0 0 0 0 ");
}

TEST(InstanceLife, CopiesAreIndependent) {
    Record source = newRecord(identity<HostSurfaceId>(1)),
           target = newRecord(identity<HostSurfaceId>(2));
    addZone(source.get(), 0.6, 1);
    chooseLights(*source, {"Key", "Ambient"});
    chooseLights(*target, {"Old"});
    source->edgeCoverage = 0.75f;
    source->activeTab = 3;
    source->transparencyUsed = 1;
    std::strcpy(source->description, "line");

    const long live = liveAllocations();
    EXPECT_EQ(Copy(target.get(), source.get()), nullptr);
    EXPECT_EQ(liveAllocations(), live + 2) << "one more zone, one more light";
    EXPECT_EQ(target->context, identity<HostSurfaceId>(2));
    EXPECT_EQ(target->activeTab, 3);
    EXPECT_EQ(target->transparencyUsed, 1);
    EXPECT_STREQ(target->description, "line");
    EXPECT_EQ(target->selectedZone, target->zoneList);
    EXPECT_EQ(target->zoneCursor, target->zoneList);
    EXPECT_EQ(target->lightCursor, target->lightList);
    EXPECT_EQ(source->zoneCursor, nullptr);
    EXPECT_EQ(source->lightCursor, nullptr);
    EXPECT_NE(source->selectedZone, source->zoneList);
    const StateItems copied = save(target.get());
    EXPECT_EQ(copied, save(source.get()));

    deleteZone(source.get(), 0.6);
    source->zoneList->color[0] = 0.5f;
    std::strcpy(source->lightList->name, "Rim");
    EXPECT_EQ(save(target.get()), copied);
    zonesOf(*target);  // its links stay among its own
    EXPECT_EQ(Copy(target.get(), target.get()), nullptr);
    EXPECT_EQ(save(target.get()), copied);
}

TEST(InstanceLife, EverythingIsFreed) {
    const long live = liveAllocations();
    {
        Record record = newRecord();
        chooseLights(*record, {"Key", "Rim"});
        Record empty = newRecord();
        replaceZones(*empty, {});
        Destroy(nullptr);
    }
    EXPECT_EQ(liveAllocations(), live);
}

TEST(InstanceLife, WithoutMemoryNothingChanges) {
    const long live = liveAllocations();
    for (int failing = 0; failing < 6; ++failing) {  // the record and five zones
        HostError error = nullptr;
        const AllocationWatch watch(failing);
        EXPECT_EQ(Create(nullptr, nullptr, &error), nullptr);
        EXPECT_NE(error, nullptr);
    }
    EXPECT_EQ(liveAllocations(), live);

    Record source = newRecord(), target = newRecord();
    chooseLights(*source, {"Key", "Rim"});
    chooseLights(*target, {"Old"});
    const StateItems before = save(target.get());
    for (int failing = 0; failing < 7; ++failing) {
        const long copies = liveAllocations();
        {
            const AllocationWatch watch(failing);
            EXPECT_EQ(Copy(target.get(), source.get()), nullptr);
        }
        EXPECT_EQ(liveAllocations(), copies);
        EXPECT_EQ(save(target.get()), before);
    }
}

}  // namespace
}  // namespace tavora::testing
