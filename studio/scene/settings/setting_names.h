#pragma once

#include <span>
#include <string>
#include <string_view>

#include "persist/stored_fields.h"

namespace tavora::studio {

/// The entry of `table` of that name ("zones" and "lights" are short for the
/// lists). Throws Error that opens with `where` and lists the nearest names.
const StoredField& findField(std::span<const StoredField> table, std::string_view name,
                             const std::string& where);

/// Whether a shader has a setting of that name; lists may go by their short name.
bool isSettingName(std::string_view name);

}  // namespace tavora::studio
