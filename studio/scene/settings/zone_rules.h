#pragma once

#include <string>

#include "studio/scene/settings/settings.h"

namespace tavora::studio {

/// Sorts zones by ascending position, stably, and checks that they form a gradient: at least
/// two, ordinary zones at both ends, no two adjacent blend zones. Otherwise throws Error,
/// whose message starts with `where`.
void orderZones(Settings& zones, const std::string& where);

}  // namespace tavora::studio
