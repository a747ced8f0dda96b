#include "tests/support/records.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "persist/state_block.h"
#include "plugin/instance_creation.h"
#include "plugin/record/list_builder.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

/// The next value without its kind, or null.
const char* take(void* data, char kind) {
    auto& unread = *static_cast<Unread*>(data);
    if (unread.empty() || unread.front()[0] != kind) return nullptr;
    const char* value = unread.front().c_str() + 1;
    unread = unread.subspan(1);
    return value;
}

template <class Number>
void write(void* data, const Number* values, int count) {
    for (int i = 0; i < count; ++i)
        static_cast<Block*>(data)->push_back(item(values[i]));
}

template <class Number, char kind>
int read(void* data, Number* values, int count) {
    for (int i = 0; i < count; ++i) {
        const char* bits = take(data, kind);
        if (bits == nullptr) return i;
        values[i] = std::bit_cast<Number>(static_cast<std::uint32_t>(std::stoul(bits)));
    }
    return count;
}

int readText(void* data, char* buffer, int capacity) {
    EXPECT_EQ(capacity, 150);
    const char* text = take(data, 's');
    if (text == nullptr) return 0;
    std::strncpy(buffer, text, static_cast<std::size_t>(capacity - 1));
    return 1;
}

template <class Next>
void fill(void* start, std::size_t size, Next next) {
    for (std::size_t at = 0; at < size; at += sizeof(std::uint32_t)) {
        const std::uint32_t bits = next();
        std::memcpy(static_cast<char*>(start) + at, &bits, sizeof bits);
    }
}

}  // namespace

std::uint64_t digest(const std::string& text) {
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return hash;
}

std::string joined(const Names& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += part + "\n";
    return text;
}

std::string item(std::int32_t value) {
    return "i" + std::to_string(static_cast<std::uint32_t>(value));
}
std::string item(float value) {
    return "f" + std::to_string(std::bit_cast<std::uint32_t>(value));
}

HostSaveState savingInto(Block& block) {
    return {HOST_IO_SCENE, &block, write<std::int32_t>, write<float>,
            [](void* data, const char* text) {
                static_cast<Block*>(data)->push_back("s" + std::string(text));
            }};
}

HostLoadState loadingFrom(Unread& unread) {
    return {HOST_IO_SCENE, &unread, read<std::int32_t, 'i'>, read<float, 'f'>, readText};
}

Block save(HostInstance instance) {
    Block block;
    const HostSaveState state = savingInto(block);
    EXPECT_EQ(Save(instance, &state), nullptr);
    return block;
}

void load(HostInstance instance, const Block& block, std::size_t length) {
    Unread unread(block.data(), std::min(length, block.size()));
    const HostLoadState state = loadingFrom(unread);
    EXPECT_EQ(Load(instance, &state), nullptr);
}

Record newRecord(HostSurfaceId context) {
    HostError error = nullptr;
    return Record(static_cast<ShaderInstance*>(Create(nullptr, context, &error)));
}

std::vector<Zone> zonesOf(const ShaderInstance& record) {
    std::vector<Zone> zones;
    const Zone* previous = nullptr;
    for (const Zone* zone = record.zoneList; zone != nullptr; zone = zone->next) {
        EXPECT_EQ(zone->prev, previous);
        zones.push_back(*(previous = zone));
    }
    return zones;
}

void replaceZones(ShaderInstance& record, const std::vector<Zone>& zones) {
    ListBuilder<Zone> builder;
    for (const Zone& zone : zones)
        builder.append(zone);
    freeList(record.zoneList);
    record.zoneList = record.zoneCursor = record.selectedZone = builder.take();
}

Names lightsOf(const ShaderInstance& record) {
    Names names;
    for (const LightEntry* entry = record.lightList; entry != nullptr; entry = entry->next)
        names.emplace_back(entry->name);
    return names;
}

void chooseLights(ShaderInstance& record, const Names& names) {
    ListBuilder<LightEntry> builder;
    for (const std::string& name : names)
        builder.append(lightNamed(name.c_str()));
    freeList(record.lightList);
    record.lightList = builder.take();
}

std::vector<Zone> anyZones(int count, std::mt19937& random) {
    std::vector<Zone> zones(static_cast<std::size_t>(count));
    for (Zone& zone : zones) {
        scramble(&zone, zoneSize, random);
        zone.blend &= 1;
    }
    return zones;
}

void scramble(void* start, std::size_t size, std::mt19937& random) {
    fill(start, size, [&] { return static_cast<std::uint32_t>(random()); });
}

void makeDistinct(ShaderInstance& record) {
    float value = 0.0f;
    const auto next = [&] { return std::bit_cast<std::uint32_t>(value += 1.0f); };
    fill(&record.highlightOutlineEnable, settingsSize, next);
    fill(record.selectedZone, zoneSize, next);
}

}  // namespace tavora::testing
