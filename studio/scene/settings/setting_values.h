#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "persist/stored_fields.h"
#include "studio/scene/settings/stored_block.h"

/// One stored field's value: how settings keep it, and from what people write to that form.
namespace tavora::studio {

/// Of a light's name in the module's list; it cuts longer ones.
inline constexpr std::size_t mostLightNameBytes = 79;

/// The value of a switch, a choice or a number that is an integer in the block.
Settings valueOfInteger(const StoredField& field, std::int32_t number);

/// The integer of such a value; none for one of another kind.
std::optional<std::int32_t> integerOfValue(const StoredField& field, const Settings& value);

/// What a new shader has, or a new zone for a zone's field. A list is empty.
Settings initialValue(const StoredField& field);

/// What a person wrote, in the form that settings keep. `where` opens the
/// message of the Fault::Scene for a value that the field cannot take.
Settings checkedValue(const StoredField& field, const Settings& value, const std::string& where);

/// One zone that a person wrote: with the values of `base` for what it lacks.
Settings checkedZone(const Settings& zone, const Settings& base, const std::string& where);

/// What a new zone has.
Settings newZone();

/// Throws Fault::Scene "WHERE: NAME must be WANTED, not VALUE", the value cut short.
[[noreturn]] void refuseValue(const std::string& where, const StoredField& field,
                              const std::string& wanted, const Settings& value);

}  // namespace tavora::studio
