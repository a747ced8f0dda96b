#pragma once

#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

namespace tavora::studio {

/// A look: some or all settings of the shader by name, for sharing between
/// scenes. A JSON file {"tavora": "look", "version": 1, "name": ..,
/// "description": .., "settings": {..}}.
struct Look {
    std::string name;
    std::string description;
    nlohmann::ordered_json settings;  ///< for applySettings
};

/// Reads a look, checking every field name and value. `nameOrFile` is a file,
/// or the bare name of a look that ships ("noir").
/// Throws SceneError with file and line.
Look readLook(const std::string& nameOrFile);

/// Names of the looks that ship, sorted.
std::vector<std::string> shippedLooks();

}  // namespace tavora::studio
