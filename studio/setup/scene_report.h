#pragma once

#include "studio/scene/scene.h"
#include "studio/setup/report.h"

namespace tavora::studio {

/// Reports a scene's warnings, and its notes for -v.
void reportScene(const Scene& scene, Report& report);

}  // namespace tavora::studio
