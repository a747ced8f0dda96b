#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace tavora::studio {

/// A single-precision number in JSON, exact to the bit: a short decimal that
/// reads back to it; what JSON lacks as {"float": "NaN"}, "Infinity",
/// "-Infinity", or for an unusual NaN its bits, {"float": "0xffc00001"}.
nlohmann::ordered_json jsonOfFloat(float value);

/// The same as JSON text, the shortest there is, always with a point or exponent.
std::string jsonTextOfFloat(float value);

/// The float of such a value; a JSON integer passes too. None for anything
/// else, and for a number beyond the range of floats.
std::optional<float> floatOfJson(const nlohmann::ordered_json& value);

}  // namespace tavora::studio
