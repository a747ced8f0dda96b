#pragma once

#include <array>
#include <optional>
#include <variant>

#include "host/services/panels.h"

namespace tavora::studio {

/// What a control shows: one number, or three.
using ControlValue = std::variant<int, double, std::array<int, 3>>;

/// The value in a record; none when it is null or of a type that holds no value.
std::optional<ControlValue> readValue(const HostValue* record);

/// Puts a value into a record in the form that its type asks for; a record of
/// a type that holds no value becomes one of the value's own type.
void writeValue(const ControlValue& value, HostValue& record);

// Any value as the form that a control works with. Fractions are rounded,
// numbers that no int holds become the nearest one, NaN becomes 0; one number
// becomes the first of three.
int asInteger(const ControlValue& value);
double asNumber(const ControlValue& value);
std::array<int, 3> asVector(const ControlValue& value);

}  // namespace tavora::studio
