#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/scene.h"

/// Shaders in the `extras` of a material:
/// {"tavora": {"shaders": [{"server": "TAVO", "enabled": true, "state": [6, 0.02, "Key"]}]}}
/// Integers and strings as such; floats always with a point or exponent, in the
/// shortest form that reads back to the same bits; values that JSON lacks as
/// "NaN", "Infinity", "-Infinity" inside {"float": ..}.
namespace tavora::studio {

/// The first shader in `extras`, or none. What is damaged is left out with a
/// line in `warnings` that starts with `where`.
std::optional<StoredShader> shaderFromExtras(const nlohmann::ordered_json& extras,
                                             const std::string& where,
                                             std::vector<std::string>& warnings);

/// Puts `shader` into `extras`, leaving everything else there as it was.
void shaderToExtras(const StoredShader& shader, nlohmann::ordered_json& extras);

}  // namespace tavora::studio
