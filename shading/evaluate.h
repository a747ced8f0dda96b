#pragma once

#include "host/sample.h"
#include "host/types.h"

namespace tavora {

/// Shades one sample in place: light intensity, zone colour, transparency and
/// tint, colour texture, slope, highlights, edges, ink-over, force colour.
/// Rewrites colour, luminosity, diffuse, specular and transparency, nothing
/// else. Holds the module's mutex from start to end, so evaluations of all
/// records and threads run one at a time; a ray that ink-over traces may come
/// back here inside. Without the item service the sample stays as it is.
/// [render] between Init() and Cleanup().
void Evaluate(HostInstance instance, HostSample* sample);

}  // namespace tavora
