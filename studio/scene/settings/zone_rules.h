#pragma once

#include <string>

#include "studio/scene/settings/settings.h"

namespace tavora::studio {

/// Puts zones in ascending order of position (equal ones keep theirs) and
/// checks that they make a gradient: two or more, ordinary ones at both ends,
/// no two blend zones side by side. Throws Error that opens with `where`.
void orderZones(Settings& zones, const std::string& where);

}  // namespace tavora::studio
