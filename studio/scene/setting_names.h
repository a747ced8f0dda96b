#pragma once

#include <span>
#include <string>
#include <string_view>

#include "persist/stored_fields.h"

namespace tavora::studio {

/// The entry of `table` of that name ("zones" and "lights" are short for the
/// lists). Throws SceneError that opens with `where` and lists the nearest names.
const StoredField& findField(std::span<const StoredField> table, std::string_view name,
                             const std::string& where);

}  // namespace tavora::studio
