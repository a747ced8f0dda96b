#pragma once

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "host/state.h"
#include "plugin/record/instance_life.h"
#include "plugin/record/shader_instance.h"
#include "plugin/record/zone.h"

namespace tavora::testing {

using Vec = std::array<double, 3>;
using Names = std::vector<std::string>;
inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double least = std::numeric_limits<double>::denorm_min();

struct DestroyInstance {
    void operator()(ShaderInstance* record) const { Destroy(record); }
};
using Record = std::unique_ptr<ShaderInstance, DestroyInstance>;

/// Two ordinary zones with a blend between them; no two values are the same.
inline const std::vector<Zone> blendingZones = {{.color = {0.46f, 0.88f, 0.75f},
                                                 .position = 0.1f,
                                                 .opacity = 0.42f,
                                                 .bright = 0.61f,
                                                 .sat = 0.28f},
                                                {.color = {0.5f, 0.5f, 0.5f},
                                                 .position = 0.45f,
                                                 .opacity = 0.24f,
                                                 .blend = 1,
                                                 .bright = 0.2f,
                                                 .sat = 0.3f},
                                                {.color = {0.52f, 0.43f, 0.68f},
                                                 .position = 0.8f,
                                                 .opacity = 0.11f,
                                                 .bright = 0.68f,
                                                 .sat = 0.32f}};

/// Stands for a long text that would only be copied from the code (FNV-1a).
std::uint64_t digest(const std::string& text);
std::string joined(const Names& parts);

/// A record as the host gets it.
Record newRecord(HostSurfaceId context = nullptr);

/// The record's zones in order, checked to be linked alike in both directions.
std::vector<Zone> zonesOf(const ShaderInstance& record);
void replaceZones(ShaderInstance& record, const std::vector<Zone>& zones);
inline Zone greyZone(float position, float grey, int blend = 0) {
    return {.color = {grey, grey, grey}, .position = position, .blend = blend};
}

Names lightsOf(const ShaderInstance& record);
void chooseLights(ShaderInstance& record, const Names& names);

/// The values of a state block, written out: 'i' or 'f' and the bits, so that
/// values that are not numbers compare too, or 's' and the text.
using Block = std::vector<std::string>;
std::string item(std::int32_t value);
std::string item(float value);
/// A save-state record that appends to `block`.
HostSaveState savingInto(Block& block);
/// A load-state record that takes the values off the front of `unread`. Another
/// kind of value than asked for ends the block.
using Unread = std::span<const std::string>;
HostLoadState loadingFrom(Unread& unread);
Block save(HostInstance instance);
/// Lets Load read the first `length` values.
void load(HostInstance instance, const Block& block, std::size_t length = SIZE_MAX);

/// The bits of a value, to compare all of it, whatever they mean.
template <class Value>
std::string bytesOf(const Value& value) {
    return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

/// Overwrites `size` bytes with values of any bits, not-a-numbers included.
void scramble(void* start, std::size_t size, std::mt19937& random);
/// Gives every stored setting, and those of the selected zone, whole numbers of
/// their own. Integers hold the bits of such a float.
void makeDistinct(ShaderInstance& record);

/// The stored settings in a record are 32-bit values without gaps from
/// highlightOutlineEnable on; in a zone they are all but the links.
inline constexpr std::size_t settingsSize =
    offsetof(ShaderInstance, activeTab) - offsetof(ShaderInstance, highlightOutlineEnable);
inline constexpr std::size_t zoneSize = offsetof(Zone, accountLume) + sizeof(std::int32_t);
/// Zones of any values, blends among them.
std::vector<Zone> anyZones(int count, std::mt19937& random);

/// An identity that stands for nothing.
template <class Id>
Id identity(std::uintptr_t number) {
    return reinterpret_cast<Id>(number);
}

}  // namespace tavora::testing
