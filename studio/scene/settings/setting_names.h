#pragma once

#include <span>
#include <string>
#include <string_view>

#include "persist/stored_fields.h"

namespace tavora::studio {

/// Finds a field in `table` by name; "zones" is short for "zoneList", "lights" for
/// "lightList". For an unknown name throws Error, whose message starts with `where` and
/// lists similar names.
const StoredField& findField(std::span<const StoredField> table, std::string_view name,
                             const std::string& where);

/// Whether a shader has a setting of that name, short names included.
bool isSettingName(std::string_view name);

}  // namespace tavora::studio
