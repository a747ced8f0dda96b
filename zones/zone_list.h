#pragma once

#include "plugin/record/shader_instance.h"
#include "plugin/record/zone.h"

namespace tavora {

/// The gradient of a record: a list of zones, ascending by position.
///
/// What the three operations below keep, as long as it held before: positions
/// ascend, `prev` is the reverse of `next`, the first and the last zone are
/// ordinary and stay, a blend zone has ordinary zones on both sides. They
/// notify nobody and lock nothing; [interface].

/// Adds a zone at `position` (blend: 0 ordinary, 1 blend) and leaves
/// `zoneCursor` and `selectedZone` on it. Between two zones it starts as their
/// mean. At an occupied position it goes in front of the zone there, except
/// that it never goes in front of the first zone at the same position.
/// Returns 1, or 0 with the list and the selection unchanged: above the last
/// zone, for a blend zone that would not stand between ordinary zones, and when
/// memory runs out.
int addZone(ShaderInstance* instance, double position, int blend);

/// Removes the last zone at or below `position` and selects the first zone.
/// Returns 1, or 0 with nothing changed when that zone is the first, the last,
/// or between two blend zones.
int deleteZone(ShaderInstance* instance, double position);

/// Selects the zone whose band [its position, the next one's) holds `position`
/// and returns it. Never the last zone: from its position on, the zone before
/// it. Below the first zone's position the selection stays.
Zone* moveZone(ShaderInstance* instance, double position);

}  // namespace tavora
