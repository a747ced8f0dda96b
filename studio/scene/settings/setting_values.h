#pragma once

#include <string>

#include "persist/stored_fields.h"
#include "studio/link/state_block.h"
#include "studio/scene/settings/block_items.h"
#include "studio/scene/settings/settings.h"

/// One stored field's value: between a block and JSON, and from what people
/// write to the form that settings keep.
namespace tavora::studio {

/// The value of `field` at the front of `items`. Throws Error.
Settings readValue(const StoredField& field, BlockItems& items);

/// Appends the items of a value that readValue or checkedValue gave. Throws
/// Fault::Scene that names the field for one of another kind.
void writeValue(const StoredField& field, const Settings& value, StateBlock& block);

/// What a person wrote, in the form that settings keep. `where` opens the
/// message of the Fault::Scene for a value that the field cannot take.
Settings checkedValue(const StoredField& field, const Settings& value, const std::string& where);

/// One zone that a person wrote: with the values of `base` for what it lacks.
Settings checkedZone(const Settings& zone, const Settings& base, const std::string& where);

/// What a new zone has.
Settings newZone();

}  // namespace tavora::studio
