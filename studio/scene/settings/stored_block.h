#pragma once

#include <optional>

#include <nlohmann/json.hpp>

#include "studio/link/state_block.h"

/// Conversions of a state block by the table of stored fields: to settings by name and back,
/// and from JSON items.
namespace tavora::studio {

/// A shader's settings by name, in the order of the table of stored fields: numbers as
/// numbers, choices as their labels without padding ("Off", "Light", ...), switches as
/// booleans, colours as [r, g, b] 0..1, the zone list as an array of objects, the light list
/// as an array of names. A value that no panel offers (a switch that is 7) stays an integer.
using Settings = nlohmann::ordered_json;

/// Converts a complete block of any version to settings. Fields that its version lacks get
/// their initial values. Throws Error, Fault::Scene, for a damaged block.
Settings settingsOf(const StateBlock& block);

/// Converts complete settings to a block of the current version; for the result of
/// settingsOf() exactly to the bit. Throws Error that names the field for a value that is
/// missing or of the wrong kind, and for a light list that is still "all".
StateBlock blockOf(const Settings& settings);

/// The block whose items are in a JSON array. Whether a number is an integer or a float
/// depends on its index in the block, not on how it is written: 1, 1.0 and 1e0 are the same
/// value. From the item on that does not agree with the table (the block ends early, has an
/// item of another kind, or more items than it should), the spelling decides, so that
/// settingsOf() can report what is wrong. Empty when a JSON value cannot be an item.
std::optional<StateBlock> blockOfItems(const nlohmann::ordered_json& items);

}  // namespace tavora::studio
