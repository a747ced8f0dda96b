#pragma once

#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/link/state_block.h"

namespace tavora::studio {

/// A shader's settings by name: the order and kinds of the table of stored
/// fields. Numbers as numbers, choices as their labels without padding ("Off",
/// "Light", ...), switches as booleans, colours as [r, g, b] 0..1, the zone list
/// as an array of objects, the light list as an array of names. Values that no
/// panel offers (a switch of 7) stay the integers they are.
using Settings = nlohmann::ordered_json;

/// Names the values of a complete block of any version. Fields that its version
/// does not hold are taken from `absent`, or left out when it lacks them too.
/// Throws Error for a damaged block.
Settings settingsOf(const StateBlock& block, const Settings& absent = Settings::object());

/// The block of complete settings, exact to the bit for what settingsOf gave.
/// Throws Error that names the field for a value that is missing or of the
/// wrong kind, and for a light list that is still "all".
StateBlock blockOf(const Settings& settings);

/// Lays `changes` (some of the fields, by name) over `settings`. Choices by
/// label or index, colours as [r, g, b] or "#rrggbb", "all" for every light of
/// the scene; "zones" and "lights" are short for the lists; "zones[1]" and
/// "zones[1].color" change one zone that is there. Zones are put in order; a
/// zone's missing fields get what a new zone has. `where` opens error messages.
/// Throws Error: an unknown name lists the nearest ones, a value out of
/// range names the range.
void applySettings(Settings& settings, const nlohmann::ordered_json& changes,
                   const std::string& where);

/// The settings of a complete block with `changes` laid over them as
/// applySettings() does, "all" lights being those of the scene. Throws Error.
StateBlock withChanges(const StateBlock& block, const Settings& changes, const std::string& where,
                       std::span<const std::string> sceneLights);

/// The lights that a complete block names and the scene has not.
std::vector<std::string> unknownLights(const StateBlock& block,
                                       std::span<const std::string> sceneLights);

}  // namespace tavora::studio
