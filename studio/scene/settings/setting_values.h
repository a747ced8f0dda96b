#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "persist/stored_fields.h"
#include "studio/scene/settings/stored_block.h"

/// The value of one stored field: its form in Settings, and the conversion of what people
/// write to that form.
namespace tavora::studio {

/// The longest light name in the module's list; the module cuts longer ones.
inline constexpr std::size_t maxLightNameBytes = 79;

/// Converts the integer that a block stores to the value of a switch, a choice or a whole
/// number.
Settings valueOfInteger(const StoredField& field, std::int32_t number);

/// The integer that a block stores for such a value; empty when the value is of another kind.
std::optional<std::int32_t> integerOfValue(const StoredField& field, const Settings& value);

/// The field's value in a new shader, or in a new zone for a zone's field. A list is empty.
Settings initialValue(const StoredField& field);

/// Checks a value that a person wrote and converts it to its form in Settings. Throws Error,
/// Fault::Scene, for a value that the field cannot have; the message starts with `where`.
Settings checkedValue(const StoredField& field, const Settings& value, const std::string& where);

/// The same for a zone; fields that it lacks get their values from `base`.
Settings checkedZone(const Settings& zone, const Settings& base, const std::string& where);

/// A zone with the initial values of all fields.
Settings newZone();

/// Throws Fault::Scene "WHERE: NAME must be WANTED, not VALUE", the value cut short.
[[noreturn]] void refuseValue(const std::string& where, const StoredField& field,
                              const std::string& wanted, const Settings& value);

}  // namespace tavora::studio
