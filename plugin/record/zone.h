#pragma once

#include <cstdint>

namespace tavora {

/// One zone of a gradient that maps light intensity to colour. As created, it
/// holds the values of a new zone.
///
/// An ordinary zone holds for the intensities above its position up to the next
/// zone's. A blend zone turns the step between the ordinary zones beside it
/// into a smooth change whose middle is its position.
struct Zone {
    float color[3] = {0.3f, 0.5f, 0.7f};
    float position = 0.0f;  ///< on the intensity axis, 0..1
    /// Ordinary: share of the zone's colour over the surface's own, 0..1.
    /// Blend: share of the upper neighbour's colour at the blend point, 0..1.
    float opacity = 1.0f;
    std::int32_t blend = 0;          ///< 0 ordinary, 1 blend
    float bright = 1.0f;             ///< factor on the colour
    float sat = 1.0f;                ///< 1 the colour, 0 its grey
    float trans = 0.0f;              ///< transparency added to the surface's
    std::int32_t reserved = 0;       ///< kept in the state block, used by nothing
    std::int32_t accountLights = 0;  ///< boolean: tint by the colour of the lights
    float accountLightOpac = 1.0f;   ///< strength of that tint, 0..1
    std::int32_t accountLume = 0;    ///< boolean; kept, used by nothing
    Zone* next = nullptr;            ///< next higher position, null at the last zone
    Zone* prev = nullptr;            ///< next lower position, null at the first zone
};

}  // namespace tavora
