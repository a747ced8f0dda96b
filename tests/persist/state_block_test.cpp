#include "persist/state_block.h"

#include <iterator>

#include "persist/stored_fields.h"
#include "plugin/description.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap.h"

namespace tavora::testing {
namespace {

constexpr std::size_t firstSetting = offsetof(ShaderInstance, highlightOutlineEnable);

// Places in the block of a record with one zone and one light.
constexpr std::ptrdiff_t zoneCount = 30, lightOpacInZone = 41, transInZone = 42, lightCount = 44,
                         lightName = 45, force = 46, sinceVersion2 = 47, sinceVersion5 = 59,
                         blockEnd = 66;

struct StateBlock : ::testing::Test {
    StateBlock() {
        replaceZones(*source, {greyZone(0.5f, 0.5f)});
        chooseLights(*source, {"Key"});
    }
    void expectRefused(const std::string& before, const char* why) {
        EXPECT_EQ(bytesOf(*record), before);
        ASSERT_EQ(host.errors.size(), 1u);
        EXPECT_NE(host.errors[0].find(why), std::string::npos) << host.errors[0];
        host.errors.clear();
    }

    FakeHost host;
    Record record = newRecord(identity<HostSurfaceId>(3)), source = newRecord();
};

// Blocks that were written long ago must stay readable. Every value in this one
// says where in the record it stood.
TEST_F(StateBlock, OrderOfItemsIsFixed) {
    makeDistinct(*source);
    const std::string block = joined(save(source.get()));
    EXPECT_EQ(digest(block), 17235336054964737669u) << block;
    std::size_t choices = 0;
    for (const StoredField& field : storedFields)
        choices += field.choices().size();
    EXPECT_EQ(choices, 3u + 2u + 3u + 3u);
}

void expectInitial(const StoredField& field, std::int32_t value) {
    EXPECT_EQ(field.initial.channels[0], static_cast<float>(value)) << field.name;
}
void expectInitial(const StoredField& field, float value) {
    EXPECT_EQ(field.initial.channels[0], value) << field.name;
}
void expectInitial(const StoredField& field, const float (&color)[3]) {
    EXPECT_TRUE(std::equal(color, color + 3, field.initial.channels.begin())) << field.name;
}
void expectInitial(const StoredField&, const void* /*list*/) {}

TEST_F(StateBlock, TheTableSaysWhatIsNew) {
    const Zone zone;
    const StoredField* field = std::begin(storedFields);
    const StoredField* zoneField = std::begin(storedZoneFields);
#define TAVORA_STORED_FIELD(member, ...) expectInitial(*field++, record->member);
#define TAVORA_STORED_ZONE_FIELD(member, ...) expectInitial(*zoneField++, zone.member);
#include "persist/stored_fields.def"
}

TEST_F(StateBlock, AnyRecordComesBackBitForBit) {
    std::mt19937 random;
    for (int round = 0; round < 200; ++round) {
        replaceZones(*source, anyZones(round % 6, random));
        scramble(&source->highlightOutlineEnable, settingsSize, random);
        chooseLights(*source, Names(random() % 4, std::string(random() % 80, 'x')));
        const Block block = save(source.get());
        EXPECT_TRUE(source->zoneCursor == source->zoneList);
        EXPECT_TRUE(source->lightCursor == source->lightList);
        load(record.get(), block);
        EXPECT_EQ(save(record.get()), block);
        EXPECT_EQ(bytesOf(*record).substr(firstSetting, settingsSize),
                  bytesOf(*source).substr(firstSetting, settingsSize));
        bool transparent = false;
        for (const Zone& zone : zonesOf(*record))
            transparent = transparent || zone.trans > 0.0f;
        EXPECT_EQ(record->transparencyUsed, transparent ? 1 : 0);
        EXPECT_EQ(record->selectedZone, record->zoneList);
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        EXPECT_EQ(record->lightCursor, record->lightList);
        EXPECT_EQ(record->context, identity<HostSurfaceId>(3));
    }
    EXPECT_TRUE(host.errors.empty());
}

TEST_F(StateBlock, IsRefusedWholeWhenCutOrWithoutMemory) {
    replaceZones(*source, std::vector<Zone>(3));
    chooseLights(*source, {"Key", "Rim"});
    source->edgeCoverage = 0.875f;
    const Block block = save(source.get());
    chooseLights(*record, {"Own"});
    record->zoneCursor = nullptr;
    record->transparencyUsed = 1;
    host.errors.reserve(1);
    const std::string before = bytesOf(*record);
    const long live = liveAllocations;
    for (std::size_t length = 0; length < block.size(); ++length) {
        load(record.get(), block, length);
        expectRefused(before, "damaged");
    }
    for (int failing = 0; failing < 5; ++failing) {
        {
            const AllocationWatch watch(failing);
            load(record.get(), block);
        }
        expectRefused(before, "memory");
    }
    EXPECT_EQ(liveAllocations, live);
    EXPECT_EQ(lightsOf(*record), Names{"Own"});
    EXPECT_EQ(zonesOf(*record).size(), 5u);
    load(record.get(), block);
    EXPECT_EQ(save(record.get()), block);
    EXPECT_EQ(liveAllocations, live - 2 + 1) << "five zones and a light gave way to three and two";
}

TEST_F(StateBlock, OlderVersionsKeepWhatTheyLack) {
    makeDistinct(*source);
    const Record plain = newRecord();
    replaceZones(*plain, {Zone{}});
    chooseLights(*plain, {"Key"});
    const Block newest = save(source.get()), lacking = save(plain.get());
    for (const auto& [version, flag] : {std::pair{-1, 0},
                                        {0, 0},
                                        {1, 0},
                                        {1, 7},
                                        {2, 0},
                                        {3, 0},
                                        {4, 0},
                                        {5, 0},
                                        {6, 0},
                                        {7, 0},
                                        {1000, 0}}) {
        Block stored = newest, expected = newest;
        const auto lacks = [&, &v = version](int since, std::ptrdiff_t from, std::ptrdiff_t to) {
            if (v >= since) return;
            std::copy(lacking.begin() + from, lacking.begin() + to, expected.begin() + from);
            stored.erase(stored.begin() + from, stored.begin() + to);
        };
        stored[0] = item(version);
        if (version == 1) {
            stored[force] = item(flag);
            expected[force] = item(flag ? 1.0f : 0.0f);
        }
        lacks(5, sinceVersion5, blockEnd);
        lacks(2, sinceVersion2, sinceVersion5);
        lacks(6, transInZone, transInZone + 1);
        lacks(4, lightOpacInZone, lightOpacInZone + 1);
        const Record fresh = newRecord();
        fresh->transparencyUsed = 1;
        load(fresh.get(), stored);
        EXPECT_EQ(save(fresh.get()), expected) << version;
        EXPECT_EQ(Flags(fresh.get()), version >= 6 ? 0x45Eu : 0x41Eu) << version;
    }
    EXPECT_TRUE(host.errors.empty());
}

TEST_F(StateBlock, CountsBeyondReasonAreDamageAndNegativeOnesAreNone) {
    const Block one = save(source.get());
    const auto loadCounts = [&](int zones, int lights) {
        Block block(one.begin(), one.begin() + zoneCount);
        const auto append = [&](int count, std::ptrdiff_t from, std::ptrdiff_t to) {
            block.push_back(item(count));
            for (; count > 0; --count)
                block.insert(block.end(), one.begin() + from, one.begin() + to);
        };
        append(zones, zoneCount + 1, lightCount);
        append(lights, lightName, force);
        block.insert(block.end(), one.begin() + force, one.end());
        const AllocationWatch watch;
        load(record.get(), block);
        return watch.count;
    };
    loadCounts(2, 1'000'000);
    EXPECT_EQ(zonesOf(*record).size() + lightsOf(*record).size(), 1'000'002u);
    const std::string before = bytesOf(*record);
    EXPECT_LT(loadCounts(1, 1'000'001), 100) << "refused before room is made";
    expectRefused(before, "damaged");
    // Room is made for what the stream holds, not for what it claims.
    Block few(one.begin(), one.begin() + lightCount);
    few[zoneCount] = item(1'000'000);
    const AllocationWatch watch;
    load(record.get(), few);
    EXPECT_LT(watch.count, 100);
    expectRefused(before, "damaged");
    loadCounts(-5, INT32_MIN);
    EXPECT_TRUE(host.errors.empty());
    EXPECT_TRUE(!record->zoneList && !record->selectedZone && !record->lightList);
}

TEST_F(StateBlock, LongLightNamesAreCutBetweenCharacters) {
    const std::string x(76, 'x');
    Block block = save(source.get());
    for (const auto& [stored, loaded] : {std::pair{x + "abc", x + "abc"},
                                         {x + "abcd", x + "abc"},
                                         {x + "ab\u00e9", x + "ab"},
                                         {x + "a\u00e9", x + "a\u00e9"},
                                         {x + "\U0001F4A1!", x},
                                         {x + "\u20ac\u20ac", x + "\u20ac"},
                                         {x + "\x80\x80\x80\x80", x + "\x80\x80\x80"}}) {
        block[lightName] = "s" + stored;
        load(record.get(), block);
        EXPECT_EQ(lightsOf(*record), Names{loaded});
    }
}

}  // namespace
}  // namespace tavora::testing
