#pragma once

#include "host/types.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// A new record for the surface `context` with the built-in settings and the
/// five zones black 0.0, blue 0.25, green 0.5, red 0.75, white 1.0, black
/// selected. The caller frees it with Destroy(). Null when memory runs out.
ShaderInstance* createRecord(HostSurfaceId context);

/// Frees a record with its zones and lights; null is ignored. [interface]
void Destroy(HostInstance instance);

/// Makes `to` an independent copy of `from`, except that `to` keeps its own
/// `context` and selects its first zone. Always returns null; when memory runs
/// out `to` stays as it was. Moves the cursors of `from`. [interface]
HostError Copy(HostInstance to, HostInstance from);

/// What Copy() does, for callers that must know: false when memory ran out.
bool copyRecord(ShaderInstance& to, ShaderInstance& from);

}  // namespace tavora
