#pragma once

#include "host/state.h"
#include "host/types.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// Writes the record's stored settings, zones and lights as a block of the
/// current version (see persist/stored_fields.h). Always returns null: what the
/// host could not write it reports itself. Resets the cursors. [interface]
HostError Save(HostInstance instance, const HostSaveState* state);

/// Replaces the stored settings, the zones and the lights by those of a block
/// of any version and selects the first zone. What an older block lacks keeps
/// its value; in a zone it takes a new zone's. Any values load as they stand.
///
/// A damaged block (it ends early, or claims more than `maxStoredEntries` zones
/// or lights) is refused whole, and so is one that memory does not suffice for:
/// the record stays as it was and the user gets one error message. Always
/// returns null. [interface], or the thread that prepares its own record.
HostError Load(HostInstance instance, const HostLoadState* state);

/// How reading a block ended.
enum class LoadOutcome { complete, damaged, outOfMemory };

/// Load() without its message: what is not complete left the record as it was.
LoadOutcome loadBlock(ShaderInstance& record, const HostLoadState& state);

}  // namespace tavora
