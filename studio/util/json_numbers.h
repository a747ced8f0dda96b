#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace tavora::studio {

/// A single-precision number in JSON, exact to the bit: a short decimal that
/// reads back to it; what JSON lacks as {"float": "NaN"}, "Infinity",
/// "-Infinity", or for an unusual NaN its bits, {"float": "0xffc00001"}.
nlohmann::ordered_json jsonOfFloat(float value);

/// The same as JSON text, the shortest there is, always with a point or exponent.
/// -0 stands as its bits: other programs write it as 0.
std::string jsonTextOfFloat(float value);

/// The float of such a value, however the number is written. None for anything
/// else, and for a number beyond the range of floats.
std::optional<float> floatOfJson(const nlohmann::ordered_json& value);

/// A whole number of 32 bits, however it is written: 3, 3.0 or 0.3e1; also one that
/// single precision makes whole. None for anything else.
std::optional<std::int32_t> integerOfJson(const nlohmann::ordered_json& value);

}  // namespace tavora::studio
