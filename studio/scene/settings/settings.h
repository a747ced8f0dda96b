#pragma once

#include <span>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/link/state_block.h"
#include "studio/scene/settings/stored_block.h"

/// Changes to settings as people write them, in looks and on the command line.
namespace tavora::studio {

/// Applies `changes`, values of some fields by name, to `settings`. A choice may be given by
/// label or index, a colour as [r, g, b] or "#rrggbb", and a light list as "all" for every
/// light of the scene. "zones" and "lights" are short names of the lists; "zones[1]" and
/// "zones[1].color" change a zone that exists. A new zone's missing fields get their initial
/// values, and zones are sorted by position. Throws Error, Fault::Scene, whose message
/// starts with `where`: for an unknown name, with similar names, and for a value out of
/// range, with the range. The settings may then be partly changed.
void applySettings(Settings& settings, const nlohmann::ordered_json& changes,
                   const std::string& where);

/// A complete block with `changes` applied as by applySettings(); the light list "all"
/// becomes the names in `sceneLights`. Throws Error.
StateBlock withChanges(const StateBlock& block, const Settings& changes, const std::string& where,
                       std::span<const std::string> sceneLights);

/// The lights that a complete block names but the scene does not have.
std::vector<std::string> unknownLights(const StateBlock& block,
                                       std::span<const std::string> sceneLights);

}  // namespace tavora::studio
