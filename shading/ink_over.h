#pragma once

#include "host/sample.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// Lets the sample react to what lies behind it along the viewing ray: repaints
/// it where the ink colour is found exactly, or, in see-through mode, blends in
/// the colour behind by the surface's translucency texture. The traced rays may
/// evaluate the shader again, and so overwrite every module global and the
/// record's cursors. When memory for the hit runs out the sample stays as it
/// is. [render], under the module's mutex.
void drawInkOver(ShaderInstance* instance, HostSample* sample);

}  // namespace tavora
