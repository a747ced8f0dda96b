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
    nlohmann::ordered_json settings;  ///< for applySettings; every name and value checked
};

/// Reads a look, checking every field name and value. `nameOrFile` is a file,
/// or the bare name of a look that ships ("noir").
/// Throws Error with file, line and column.
Look readLook(const std::string& nameOrFile);

/// The same from the text of a file; `where` is its name in messages.
Look parseLook(std::string_view text, const std::string& where);

/// Whether readLook() would find something of that name to read.
bool isLook(const std::string& nameOrFile);

/// Names of the looks that ship, sorted; none when their folder is missing.
std::vector<std::string> shippedLooks();

/// The folder of the looks that ship: share/tavora/looks beside the bin folder
/// of the running program.
std::filesystem::path shippedLooksFolder();

}  // namespace tavora::studio
