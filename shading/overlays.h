#pragma once

#include "host/sample.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// Tints the sample's colour by how far its normal points up or down in the
/// world. [render]
void applySlope(const ShaderInstance& settings, HostSample& sample);

/// Paints the band where the surface turns away from the viewer in the edge
/// colour. [render]
void applyEdge(const ShaderInstance& settings, HostSample& sample);

}  // namespace tavora
