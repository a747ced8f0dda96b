#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// A shader's settings by name: the order and kinds of the table of stored
/// fields. Numbers as numbers, choices as their labels without padding ("Off",
/// "Light", ...), switches as booleans, colours as [r, g, b] 0..1, zones as an
/// array of objects, lights as an array of names.
using Settings = nlohmann::ordered_json;

/// Names the values of a complete block. Throws SceneError for a damaged one.
Settings settingsOf(const StateBlock& block);

/// The block of complete settings, exact to the bit for what settingsOf gave.
/// Throws SceneError that names the field for a value of the wrong kind or range.
StateBlock blockOf(const Settings& settings);

/// Lays `changes` (some of the fields, by name) over `settings`. Choices by
/// label or index, colours as [r, g, b] or "#rrggbb". `where` opens error
/// messages. Throws SceneError: an unknown name lists the nearest ones.
void applySettings(Settings& settings, const nlohmann::ordered_json& changes,
                   const std::string& where);

}  // namespace tavora::studio
