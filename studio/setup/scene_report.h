#pragma once

#include "studio/scene/scene.h"
#include "studio/setup/report.h"

namespace tavora::studio {

/// Says what reading a scene left to say: its warnings, and its notes for -v.
void reportScene(const Scene& scene, Report& report);

}  // namespace tavora::studio
