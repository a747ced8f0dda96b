#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/surface_shader.h"

/// Shaders in the `extras` of a material:
/// {"tavora": {"shaders": [{"server": "TAVO", "enabled": true, "state": [6, 0.02, "Key"]}]}}
/// Floats are written with a point or exponent, in the shortest form that reads back to the
/// same bits; values that JSON cannot express are written as "NaN", "Infinity", "-Infinity"
/// or as their bits in {"float": ..}. Another program may rewrite 1.0 as 1: the table of
/// stored fields, not the spelling, decides whether a number is an integer or a float.
namespace tavora::studio {

/// The first shader in `extras`; empty when there is none. For a damaged one returns nothing
/// and adds a line to `warnings` that starts with `where`.
std::optional<SurfaceShader> shaderFromExtras(const nlohmann::ordered_json& extras,
                                              const std::string& where,
                                              std::vector<std::string>& warnings);

/// The JSON text of `extras` with `shader` as the first of its shaders, replacing one of the
/// same server; all other text is unchanged. `extras` must be a valid JSON value, or empty
/// for a material without extras. Throws Error when it is not an object.
std::string extrasWithShader(std::string_view extras, const SurfaceShader& shader);

}  // namespace tavora::studio
