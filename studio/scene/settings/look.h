#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace tavora::studio {

/// A look: some or all settings of the shader by name, for sharing between
/// scenes. A JSON file {"tavora": "look", "version": 1, "name": ..,
/// "description": .., "settings": {..}}.
struct Look {
    std::string name;
    std::string description;
    nlohmann::ordered_json settings;  ///< for applySettings(); all names and values are valid
};

/// Reads a look and checks all its names and values. `nameOrFile` is a file, or the bare
/// name of a look that ships with the program ("noir"). Throws Error, Fault::Scene, with
/// file, line and column.
Look readLook(const std::string& nameOrFile);

/// The same for the text of a file; `where` is its name in messages.
Look parseLook(std::string_view text, const std::string& where);

/// Whether there is a file for readLook() to read, valid or not.
bool isLook(const std::string& nameOrFile);

/// The names of the shipped looks, sorted; empty when their folder is missing.
std::vector<std::string> shippedLooks();

/// The folder of the shipped looks: share/tavora/looks beside the bin folder of the
/// running program.
std::filesystem::path shippedLooksFolder();

}  // namespace tavora::studio
