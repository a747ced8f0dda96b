#pragma once

#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/link/state_block.h"
#include "studio/scene/settings/stored_block.h"

/// What people ask of settings.
namespace tavora::studio {

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
