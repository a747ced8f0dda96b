#include "persist/state_block.h"

#include <cstring>
#include <gtest/gtest.h>

#include "persist/stored_fields.h"
#include "plugin/description.h"
#include "tests/support/allocations.h"
#include "tests/support/fake_host.h"
#include "tests/support/single.h"
#include "tests/support/state_items.h"

namespace tavora::testing {
namespace {

// All settings are values of 32 bits without gaps, in the record and in a zone.
constexpr std::size_t settingsSize =
    offsetof(ShaderInstance, activeTab) - offsetof(ShaderInstance, highlightOutlineEnable);
constexpr std::size_t zoneValues = offsetof(Zone, accountLume) + sizeof(std::int32_t);

void* firstSetting(ShaderInstance& record) {
    return &record.highlightOutlineEnable;
}

void randomize(ShaderInstance& record, Values& values) {
    const auto fill = [&](void* start, std::size_t size) {
        for (std::size_t at = 0; at < size; at += sizeof(float)) {
            const float any = values.anyFloat();
            std::memcpy(static_cast<char*>(start) + at, &any, sizeof any);
        }
    };
    fill(firstSetting(record), settingsSize);
    std::vector<Zone> zones(static_cast<unsigned>(values.integer(0, 6)));
    for (Zone& zone : zones) {
        fill(&zone, zoneValues);
    }
    replaceZones(record, zones);
    std::vector<std::string> lights(static_cast<unsigned>(values.integer(0, 4)));
    for (std::string& name : lights)
        name = std::string(static_cast<unsigned>(values.integer(0, 79)), 'x');
    chooseLights(record, lights);
}

class StateBlock : public ::testing::Test {
  protected:
    FakeHost host;
    Record record = newRecord(identity<HostSurfaceId>(3));
};

TEST_F(StateBlock, AnyRecordComesBackBitForBit) {
    Values values(30);
    for (int round = 0; round < 200; ++round) {
        Record source = newRecord();
        randomize(*source, values);
        load(record.get(), save(source.get()));

        EXPECT_EQ(std::memcmp(firstSetting(*record), firstSetting(*source), settingsSize), 0);
        EXPECT_EQ(lightsOf(*record), lightsOf(*source));
        const std::vector<Zone> zones = zonesOf(*record), expected = zonesOf(*source);
        ASSERT_EQ(zones.size(), expected.size());
        bool transparent = false;
        for (std::size_t i = 0; i < zones.size(); ++i) {
            EXPECT_EQ(std::memcmp(&zones[i], &expected[i], zoneValues), 0);
            transparent |= zones[i].trans > 0.0f;
        }
        EXPECT_EQ(record->transparencyUsed, transparent ? 1 : 0);
        EXPECT_EQ(record->selectedZone, record->zoneList);
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        EXPECT_EQ(record->lightCursor, record->lightList);
        EXPECT_EQ(record->context, identity<HostSurfaceId>(3));
    }
    EXPECT_TRUE(host.errors.empty());
}

TEST_F(StateBlock, EveryPrefixLeavesTheRecordAsItWas) {
    Values values(31);
    Record source = newRecord();
    randomize(*source, values);
    replaceZones(*source, std::vector<Zone>(3));
    chooseLights(*source, {"Key", "Rim"});
    const StateItems block = save(source.get());
    chooseLights(*record, {"Own"});
    record->zoneCursor = nullptr;
    host.errors.reserve(1);
    const std::string before = bytesOf(*record);
    const long live = liveAllocations();
    for (std::size_t length = 0; length < block.size(); ++length) {
        host.errors.clear();
        load(record.get(), block, length);
        ASSERT_EQ(bytesOf(*record), before) << length;
        ASSERT_EQ(host.errors.size(), 1u) << length;
        EXPECT_NE(host.errors[0].find("damaged"), std::string::npos);
    }
    host.errors.clear();
    EXPECT_EQ(liveAllocations(), live);
    EXPECT_EQ(lightsOf(*record), std::vector<std::string>{"Own"});
    EXPECT_EQ(zonesOf(*record).size(), 5u);
    load(record.get(), block);
    EXPECT_NE(bytesOf(*record), before);
}

TEST_F(StateBlock, WithoutMemoryTheRecordStaysAsItWas) {
    Record source = newRecord();
    chooseLights(*source, {"Key", "Rim"});
    const StateItems block = save(source.get());
    const std::string before = bytesOf(*record);
    host.errors.reserve(1);
    for (int failing = 0; failing < 7; ++failing) {  // five zones, two lights
        const long live = liveAllocations();
        {
            const AllocationWatch watch(failing);
            load(record.get(), block);
        }
        EXPECT_EQ(bytesOf(*record), before) << failing;
        ASSERT_EQ(host.errors.size(), 1u);
        EXPECT_NE(host.errors[0].find("memory"), std::string::npos);
        host.errors.clear();
        EXPECT_EQ(liveAllocations(), live);
    }
}

/// Positions in a block of the current version, found by walking the table.
struct BlockMap {
    std::size_t zoneCount = 0, lightCount = 0, force = 0;
    std::size_t zoneLength = 0, transInZone = 0, opacInZone = 0;

    explicit BlockMap(const StateItems& block) {
        for (const StoredField& field : storedZoneFields) {
            if (field.name == "trans") transInZone = zoneLength;
            if (field.name == "accountLightOpac") opacInZone = zoneLength;
            zoneLength += field.kind == FieldKind::Color ? 3 : 1;
        }
        std::size_t at = 1;
        for (const StoredField& field : storedFields) {
            if (field.kind == FieldKind::Zones) zoneCount = at;
            if (field.kind == FieldKind::Lights) lightCount = at;
            if (field.name == "forceColor") force = at;
            const bool list = field.kind == FieldKind::Zones || field.kind == FieldKind::Lights;
            const std::size_t length = field.kind == FieldKind::Zones ? zoneLength : 1;
            at += field.kind == FieldKind::Color ? 3 : list ? 1 + block[at].bits * length : 1;
        }
        EXPECT_EQ(at, block.size());
    }
};

/// The block as an older version would have written it.
StateItems asVersion(int version, const StateItems& block, std::int32_t forceFlag = 7) {
    const BlockMap map(block);
    StateItems old(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(map.zoneCount + 1));
    old[0] = integerItem(version);
    for (std::size_t i = map.zoneCount + 1; i < map.lightCount; ++i) {
        const std::size_t inZone = (i - map.zoneCount - 1) % map.zoneLength;
        if (inZone == map.opacInZone && version < 4) continue;
        if (inZone == map.transInZone && version < 6) continue;
        old.push_back(block[i]);
    }
    // Colours and depth, 6 + 2 + 1 + 3 values, came with version 2; seven words
    // with version 5.
    const std::size_t end = map.force + (version >= 5 ? 20 : version >= 2 ? 13 : 1);
    for (std::size_t i = map.lightCount; i < end; ++i)
        old.push_back(block[i]);
    if (version == 1) old.back() = integerItem(forceFlag);
    return old;
}

TEST_F(StateBlock, OlderVersionsKeepWhatTheyLack) {
    Record source = newRecord();
    source->edgeCoverage = 0.875f;
    source->forceColor = 0.25f;
    source->maxTraceDepth = 9;
    source->useAllLights = 0;
    source->reserved[0] = 10;
    source->reserved[5] = 11;
    source->inkoverTranslucent = 12;
    source->zoneList->trans = 0.25f;
    source->zoneList->accountLightOpac = 0.5f;
    source->zoneList->accountLume = 13;
    chooseLights(*source, {"Key"});
    const StateItems block = save(source.get());
    for (const int version : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 1000}) {
        SCOPED_TRACE(version);
        Record fresh = newRecord();
        fresh->transparencyUsed = 1;
        load(fresh.get(), asVersion(version, block));
        EXPECT_EQ(fresh->edgeCoverage, 0.875f);
        EXPECT_EQ(lightsOf(*fresh), std::vector<std::string>{"Key"});
        EXPECT_EQ(fresh->forceColor, version == 1 ? 1.0f : 0.25f);
        EXPECT_EQ(fresh->maxTraceDepth, version >= 2 ? 9 : 1);
        EXPECT_EQ(fresh->useAllLights, version >= 2 ? 0 : 1);
        EXPECT_EQ(fresh->reserved[0], version >= 5 ? 10 : 0);
        EXPECT_EQ(fresh->reserved[5], version >= 5 ? 11 : 0);
        EXPECT_EQ(fresh->inkoverTranslucent, version >= 5 ? 12 : 0);
        const Zone zone = zonesOf(*fresh)[0];
        EXPECT_EQ(zone.accountLightOpac, version >= 4 ? 0.5f : 1.0f);
        EXPECT_EQ(zone.trans, version >= 6 ? 0.25f : 0.0f);
        EXPECT_EQ(zone.accountLume, 13);
        EXPECT_EQ(Flags(fresh.get()), version >= 6 ? 0x45Eu : 0x41Eu);
        EXPECT_EQ(zonesOf(*fresh).size(), 5u);
    }
    load(record.get(), asVersion(1, block, 0));
    EXPECT_EQ(record->forceColor, 0.0f);
    EXPECT_TRUE(host.errors.empty());
}

TEST_F(StateBlock, CountsBeyondReasonAreDamageAndNegativeOnesAreNone) {
    chooseLights(*record, {"Key"});
    const StateItems block = save(record.get());
    const BlockMap map(block);
    const auto withCounts = [&](std::int32_t zones, std::int32_t lights) {
        StateItems items(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(map.zoneCount));
        items.push_back(integerItem(zones));
        for (std::int32_t i = 0; i < zones && i < 5000; ++i) {
            const auto first = block.begin() + static_cast<std::ptrdiff_t>(map.zoneCount + 1);
            items.insert(items.end(), first, first + static_cast<std::ptrdiff_t>(map.zoneLength));
        }
        items.push_back(integerItem(lights));
        for (std::int32_t i = 0; i < lights && i < 5000; ++i)
            items.push_back(stringItem("L"));
        items.insert(items.end(), block.begin() + static_cast<std::ptrdiff_t>(map.force),
                     block.end());
        load(record.get(), items);
        return host.errors.empty();
    };
    EXPECT_TRUE(withCounts(4096, 4096));
    EXPECT_EQ(zonesOf(*record).size() + lightsOf(*record).size(), 8192u);
    EXPECT_TRUE(withCounts(-5, INT32_MIN));
    EXPECT_EQ(record->zoneList, nullptr);
    EXPECT_EQ(record->selectedZone, nullptr);
    EXPECT_EQ(record->lightList, nullptr);
    EXPECT_FALSE(withCounts(4097, 1));
    EXPECT_FALSE(withCounts(1, 4097));
    EXPECT_EQ(host.errors.size(), 2u);
    EXPECT_EQ(record->zoneList, nullptr);
}

TEST_F(StateBlock, LongLightNamesAreCutBetweenCharacters) {
    const std::string x(76, 'x');
    const struct {
        std::string stored, loaded;
    } cases[] = {
        {x + "abc", x + "abc"},
        {x + "abcd", x + "abc"},
        {x + "ab\u00e9", x + "ab"},          // two bytes, the second beyond
        {x + "a\u00e9", x + "a\u00e9"},      // fits
        {x + "\U0001F4A1!", x},              // four bytes
        {x + "\u20ac\u20ac", x + "\u20ac"},  // three bytes that fit, three that do not
        {x + "\x80\x80\x80\x80", x + "\x80\x80\x80"},
        {std::string(100, '\x80'), std::string(79, '\x80')},  // no UTF-8 at all
        {std::string(400, 'y'), std::string(79, 'y')},
    };
    for (const auto& c : cases) {
        chooseLights(*record, {"?"});
        StateItems block = save(record.get());
        block[BlockMap(block).lightCount + 1] = stringItem(c.stored);
        load(record.get(), block);
        EXPECT_EQ(lightsOf(*record), std::vector<std::string>{c.loaded});
    }
}

/// Gives every field that it is shown a number of its own and notes the item
/// that must stand for it.
struct Numbering {
    StateItems expected;
    std::int32_t last = 0;

    void operator()(std::int32_t& field) { expected.push_back(integerItem(field = ++last)); }
    void operator()(float& field) {
        field = static_cast<float>(++last);
        expected.push_back(floatItem(field));
    }
    void operator()(float (&color)[3]) {
        for (float& channel : color)
            (*this)(channel);
    }
    template <class... Fields>
    void all(Fields&... fields) {
        ((*this)(fields), ...);
    }
};

// Blocks that were written long ago must stay readable.
TEST_F(StateBlock, OrderOfItemsIsFixed) {
    ShaderInstance& r = *record;
    replaceZones(r, {Zone{}});
    Zone& z = *r.zoneList;
    chooseLights(r, {"Key", "Ambient"});
    Numbering number;
    StateItems& items = number.expected;
    items.push_back(integerItem(6));
    number.all(r.highlightOutlineEnable, r.highlightOutlineSize, r.highlightOutlineOpacity,
               r.highlightOutlineColor, r.highlightEnable, r.highlightSize, r.highlightOpacity,
               r.highlightColor, r.edgeEnable, r.edgeCoverage, r.edgeSharpness, r.edgeColor,
               r.slopeEnable, r.slopeTopColor, r.slopeBottomColor, r.slopeTopOpacity,
               r.slopeBottomOpacity, r.slopeStyle, r.slopeCenter);
    items.push_back(integerItem(1));
    number.all(z.color, z.position, z.opacity, z.blend, z.bright, z.sat, z.reserved,
               z.accountLights, z.accountLightOpac, z.trans, z.accountLume);
    items.push_back(integerItem(2));
    items.push_back(stringItem("Key"));
    items.push_back(stringItem("Ambient"));
    number.all(r.forceColor, r.inkoverColor, r.inkoverPaintColor, r.inkoverEnable, r.inkoverObject,
               r.maxTraceDepth, r.lightPower, r.colorTextureUse, r.useAllLights);
    for (std::int32_t& word : r.reserved)
        number(word);
    number(r.inkoverTranslucent);
    EXPECT_EQ(save(record.get()), items);
    EXPECT_EQ(r.zoneCursor, r.zoneList);
    EXPECT_EQ(r.lightCursor, r.lightList);
}

}  // namespace
}  // namespace tavora::testing
