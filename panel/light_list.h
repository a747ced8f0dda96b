#pragma once

#include "host/services/panels.h"

/// The "Lights" list: row 0 is the ambient light, row k the k-th light of the
/// scene; column 0 a check mark, column 1 the name. Lights are known by name, so
/// lights of one name share an entry. `userData` is the record. [interface]
namespace tavora {

/// Rows of the list; 0 without a record.
int cb_lightCount(void* userData);

/// A cell's text, or a header's (row -1); null for none. A light's name stays
/// valid until the next call.
const char* cb_multilightName(void* userData, int row, int column);

/// A column's width in pixels; 0 ends the columns.
int cb_multilightWidth(void* userData, int column);

/// A click on a row: chooses its light, or drops it. When memory runs out the
/// choice stays as it was.
void cb_listboxLights(HostControlId control, void* userData);

/// Chooses every light of the scene, in its order, without the ambient light.
void cb_allLights(HostControlId control, void* userData);

/// Drops every light.
void cb_noneLights(HostControlId control, void* userData);

}  // namespace tavora
