#pragma once

#include "host/sample.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

/// What the last evalColor() found at its intensity, whatever the channel:
/// opacity, saturation and brightness. One set for the module.
extern float gradAlpha;
extern float gradSat;
extern float gradBright;

/// One channel (0 red, 1 green, 2 blue) of the gradient's colour at an
/// intensity of any value.
///
/// With `useSample` nonzero the zone's colour lies over the sample's own by the
/// zone's opacity, and the result is rounded to single precision. With 0 it is
/// the colour for a preview, brightness and saturation applied, and `sample` is
/// not read.
///
/// Leaves `zoneCursor` on the zone at the lower end of the interval that holds
/// the intensity, and the three values above. A blend zone without a neighbour
/// on either side acts as an ordinary one; a record without zones gives 0, with
/// opacity 0, saturation 1, brightness 1 and a null cursor.
///
/// Not reentrant: under the module's mutex, or on the interface thread.
double evalColor(ShaderInstance* instance, double intensity, int channel, int useSample,
                 const HostSample* sample);

/// All three channels of evalColor() over the sample's own colour, at the price
/// of little more than one.
void evalColors(ShaderInstance* instance, double intensity, const HostSample& sample,
                double color[3]);

}  // namespace tavora
