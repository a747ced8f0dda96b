#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace tavora {

/// How a stored setting stands in a block. A block is one integer, the block
/// version, and then the fields of `storedFields` in order.
enum class FieldKind {
    Boolean,   ///< one integer, 0 or 1
    Choice,    ///< one integer, an index into the choice texts
    Integer,   ///< one integer
    Fraction,  ///< one float
    Color,     ///< one group of three floats: red, green, blue
    Zones,     ///< one integer, the count, then per zone the fields of `storedZoneFields`
    Lights,    ///< one integer, the count, then per light one string, its name
    Reserved   ///< one integer that means nothing but is kept
};

/// The block version that is written. Later ones are read as this one.
inline constexpr int blockVersion = 6;

/// The `firstVersion` of fields that every block holds, whatever its version.
inline constexpr int everyVersion = std::numeric_limits<int>::min();

/// More zones or lights than this are a sign of damage. Far more than anybody
/// makes: whatever was saved must load. Readers never make room by a stored
/// count, only for the entries that are there.
inline constexpr int maxStoredEntries = 1'000'000;

/// What a new record has of a field: a number, which is the first, or the channels
/// of a colour.
struct InitialValue {
    constexpr InitialValue(double number) : channels{static_cast<float>(number)} {}

    std::array<float, 3> channels;
};

constexpr InitialValue rgb(double red, double green, double blue) {
    InitialValue value = red;
    value.channels[1] = static_cast<float>(green);
    value.channels[2] = static_cast<float>(blue);
    return value;
}

/// One stored setting: plain data, for whoever names settings or reads blocks.
struct StoredField {
    std::string_view name;
    FieldKind kind;
    InitialValue initial;         ///< what a block without the field means; 0 for lists
    double min;                   ///< what makes sense; a block may hold any value. Per channel
    double max;                   ///< for colours, entries for lists
    int firstVersion;             ///< first block version that holds the field
    bool flagInVersion1 = false;  ///< version 1 holds an integer instead: 0, or nonzero for 1.0
    std::array<std::string_view, 3> texts = {};

    /// The texts of a choice by index; empty for other kinds.
    constexpr std::span<const std::string_view> choices() const {
        std::size_t count = 0;
        while (count < texts.size() && !texts[count].empty())
            ++count;
        return std::span(texts).first(count);
    }
};

/// The fields of a record, in block order.
inline constexpr StoredField storedFields[] = {
#define TAVORA_STORED_FIELD(member, kind, initial, min, max, firstVersion, ...) \
    {#member, FieldKind::kind, initial, min, max, firstVersion, false, {__VA_ARGS__}},
#define TAVORA_STORED_FLAG_FIELD(member, kind, initial, min, max, firstVersion) \
    {#member, FieldKind::kind, initial, min, max, firstVersion, true, {}},
#include "persist/stored_fields.def"
};

/// The fields of one zone, in block order.
inline constexpr StoredField storedZoneFields[] = {
#define TAVORA_STORED_ZONE_FIELD(member, kind, initial, min, max, firstVersion) \
    {#member, FieldKind::kind, initial, min, max, firstVersion, false, {}},
#include "persist/stored_fields.def"
};

}  // namespace tavora
