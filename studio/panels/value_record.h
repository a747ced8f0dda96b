#pragma once

#include <array>
#include <optional>
#include <variant>

#include "host/services/panels.h"

namespace tavora::studio {

/// The value of a control: one number, or three.
using ControlValue = std::variant<int, double, std::array<int, 3>>;

/// The value in a record; empty when the record is null or its type has no value.
std::optional<ControlValue> readValue(const HostValue* record);

/// Stores a value in a record, converted to the record's type; a record whose type has no value
/// gets the value's own type.
void writeValue(const ControlValue& value, HostValue& record);

// Conversions of a value. Fractions are rounded, numbers out of the range of int are clamped, and
// NaN becomes 0. One number becomes the first of three.
int asInteger(const ControlValue& value);
double asNumber(const ControlValue& value);
std::array<int, 3> asVector(const ControlValue& value);

}  // namespace tavora::studio
