#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace tavora::studio {

/// A single-precision number as JSON, from which it can be read back exactly: a short decimal;
/// for values that JSON lacks {"float": "NaN"}, "Infinity" or "-Infinity", or the bits of an
/// unusual NaN, {"float": "0xffc00001"}.
nlohmann::ordered_json jsonOfFloat(float value);

/// The same as JSON text: the shortest decimal, always with a point or exponent. -0 is written
/// as its bits, because other programs would rewrite it as 0.
std::string jsonTextOfFloat(float value);

/// The float that such a value stands for, however the number is written. Empty for any other
/// value, and for a number out of the range of floats.
std::optional<float> floatOfJson(const nlohmann::ordered_json& value);

/// A whole number of 32 bits, however it is written: 3, 3.0 or 0.3e1; also one that rounding to
/// single precision makes whole. Empty for any other value.
std::optional<std::int32_t> integerOfJson(const nlohmann::ordered_json& value);

}  // namespace tavora::studio
