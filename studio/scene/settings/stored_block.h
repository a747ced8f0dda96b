#pragma once

#include <optional>

#include <nlohmann/json.hpp>

#include "studio/link/state_block.h"

/// A state block by the table of stored fields: as settings by name, and as JSON items.
namespace tavora::studio {

/// A shader's settings by name: the order and kinds of the table of stored
/// fields. Numbers as numbers, choices as their labels without padding ("Off",
/// "Light", ...), switches as booleans, colours as [r, g, b] 0..1, the zone list
/// as an array of objects, the light list as an array of names. Values that no
/// panel offers (a switch of 7) stay the integers they are.
using Settings = nlohmann::ordered_json;

/// Names the values of a complete block of any version. Fields that its version
/// does not hold have what a new shader, or a new zone, has.
/// Throws Error for a damaged block.
Settings settingsOf(const StateBlock& block);

/// The block of complete settings, exact to the bit for what settingsOf gave.
/// Throws Error that names the field for a value that is missing or of the
/// wrong kind, and for a light list that is still "all".
StateBlock blockOf(const Settings& settings);

/// The block whose items stand in a JSON array. Whether a number is an integer or
/// a float is decided by its place in the block, not by how it is written: 1, 1.0
/// and 1e0 are one value. From where the table cannot go on (the block ends early,
/// holds something else, or more than it says) the spelling decides, so that who
/// uses the block finds what is wrong with it. None for anything that no item can be.
std::optional<StateBlock> blockOfItems(const nlohmann::ordered_json& items);

}  // namespace tavora::studio
