#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/surface_shader.h"

/// Shaders in the `extras` of a material:
/// {"tavora": {"shaders": [{"server": "TAVO", "enabled": true, "state": [6, 0.02, "Key"]}]}}
/// Floats are written with a point or exponent, in the shortest form that reads back
/// to the same bits; values that JSON lacks as "NaN", "Infinity", "-Infinity" or their
/// bits inside {"float": ..}. However another program writes the numbers again, they
/// are read as they were: the table of stored fields says what each is.
namespace tavora::studio {

/// The first shader in `extras`, or none. What is damaged is left out with a
/// line in `warnings` that starts with `where`.
std::optional<SurfaceShader> shaderFromExtras(const nlohmann::ordered_json& extras,
                                              const std::string& where,
                                              std::vector<std::string>& warnings);

/// The JSON text of `extras` with `shader` first among its shaders, in place of
/// one of the same server; everything else as it stands. `extras` is the text
/// of a valid JSON value, or empty for a material without any.
/// Throws Error for extras that are no object.
std::string extrasWithShader(std::string_view extras, const SurfaceShader& shader);

}  // namespace tavora::studio
