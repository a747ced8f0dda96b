#include <bit>
#include <cstring>
#include <sstream>

#include "plugin/instance_creation.h"
#include "tests/support/heap.h"
#include "tests/support/records.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

TEST(InstanceLife, ANewRecordHoldsTheDefaults) {
    const Record record = newRecord(identity<HostSurfaceId>(7));
    EXPECT_EQ(record->context, identity<HostSurfaceId>(7));
    EXPECT_EQ(record->selectedZone, record->zoneList);

    std::ostringstream settings;  // all stored ones, in block order
    for (const std::string& value : save(record.get())) {
        const auto bits = static_cast<std::uint32_t>(std::stoul(value.substr(1)));
        settings << (value[0] == 'i' ? static_cast<float>(bits) : std::bit_cast<float>(bits))
                 << ' ';
    }
    const std::string plain = "1 0 1 1 0 0 1 0 0 ";
    EXPECT_EQ(settings.str(),
              "6 0 0.02 1 0 0 0 0 0.12 1 1 1 1 "  // outline, highlight
              "0 0.2 0.5 0 0 0 "                  // edge
              "0 1 1 1 0 0 0 0.5 0.5 0 0.5 "      // slope
              "5 0 0 0 0 " +
                  plain + "0 0 1 0.25 " + plain +  // zones
                  "0 1 0 0.5 " + plain + "1 0 0 0.75 " + plain + "1 1 1 1 " + plain +
                  "0 1 "                      // lights, force
                  "0 0 0 0 0 0 0 1 1 0 0 1 "  // ink-over, uses
                  "0 0 0 0 0 0 0 ");
}

TEST(InstanceLife, CopiesAreIndependent) {
    const Record source = newRecord(identity<HostSurfaceId>(1));
    const Record target = newRecord(identity<HostSurfaceId>(2));
    addZone(source.get(), 0.6, 1);
    chooseLights(*source, {"Key", "Ambient"});
    chooseLights(*target, {"Old"});
    source->edgeCoverage = 0.75f;
    source->activeTab = 3;
    source->transparencyUsed = 1;
    std::strcpy(source->description, "line");

    const long live = liveAllocations;
    EXPECT_EQ(Copy(target.get(), source.get()), nullptr);
    EXPECT_EQ(liveAllocations, live + 2) << "one more zone, one more light";
    EXPECT_EQ(target->context, identity<HostSurfaceId>(2));
    EXPECT_TRUE(target->activeTab == 3 && target->transparencyUsed == 1);
    EXPECT_STREQ(target->description, "line");
    EXPECT_TRUE(target->selectedZone == target->zoneList && target->zoneCursor == target->zoneList);
    EXPECT_EQ(target->lightCursor, target->lightList);
    EXPECT_TRUE(!source->zoneCursor && !source->lightCursor);
    const Block copied = save(target.get());
    EXPECT_EQ(copied, save(source.get()));
    zonesOf(*target);  // linked among its own

    deleteZone(source.get(), 0.6);
    std::strcpy(source->lightList->name, "Rim");
    EXPECT_EQ(save(target.get()), copied);
    EXPECT_EQ(Copy(target.get(), target.get()), nullptr);
    EXPECT_EQ(save(target.get()), copied);
}

TEST(InstanceLife, FreesEverythingAlsoWithoutMemory) {
    const long live = liveAllocations;
    for (int failing = 0; failing < 6; ++failing) {  // the record and five zones
        HostError error = nullptr;
        const AllocationWatch watch(failing);
        EXPECT_EQ(Create(nullptr, nullptr, failing % 2 ? &error : nullptr), nullptr);
        EXPECT_EQ(error != nullptr, failing % 2 != 0);
    }
    {
        const Record source = newRecord(), target = newRecord();
        chooseLights(*source, {"Key", "Rim"});
        const std::string before = bytesOf(*target);
        const long copies = liveAllocations;
        for (int failing = 0; failing < 7; ++failing) {
            const AllocationWatch watch(failing);
            EXPECT_EQ(Copy(target.get(), source.get()), nullptr);
            EXPECT_EQ(liveAllocations, copies);
        }
        EXPECT_EQ(bytesOf(*target), before);
    }
    Destroy(nullptr);
    EXPECT_EQ(liveAllocations, live);
}

}  // namespace
}  // namespace tavora::testing
