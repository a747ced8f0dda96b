#pragma once

#include <cstdint>

#include "host/types.h"
#include "plugin/record/light_entry.h"
#include "plugin/record/zone.h"

namespace tavora {

/// All settings of one surface that uses the shader.
///
/// Fractions and colour channels run from 0 to 1, but any value may stand in a
/// record that was loaded: whoever reads one survives infinities, NaN, and
/// lists of any length. The record owns both its lists; `selectedZone` and the
/// cursors point into them, or are null, and own nothing. The interface thread
/// edits a record, an evaluation only moves the cursors, and only under the
/// module's mutex.
struct ShaderInstance {
    HostSurfaceId context = nullptr;  ///< the surface that the record shades

    std::int32_t highlightOutlineEnable = 0;  ///< boolean
    float highlightOutlineSize = 0.02f;       ///< in cosines of the reflection angle
    float highlightOutlineOpacity = 1.0f;
    float highlightOutlineColor[3] = {0.0f, 0.0f, 0.0f};
    std::int32_t highlightEnable = 0;  ///< 0 off, 1 in highlightColor, 2 in the light's colour
    float highlightSize = 0.12f;       ///< in cosines of the reflection angle
    float highlightOpacity = 1.0f;
    float highlightColor[3] = {1.0f, 1.0f, 1.0f};

    float edgeCoverage = 0.2f;   ///< view cosine below which only the edge colour shows
    float edgeSharpness = 0.5f;  ///< 1 a hard border, 0 the widest soft one
    float edgeColor[3] = {0.0f, 0.0f, 0.0f};
    std::int32_t edgeEnable = 0;  ///< boolean

    std::int32_t slopeEnable = 0;  ///< boolean
    float slopeTopColor[3] = {1.0f, 1.0f, 1.0f};
    float slopeBottomColor[3] = {0.0f, 0.0f, 0.0f};
    float slopeCenter = 0.5f;  ///< slope where top and bottom meet: 0 faces down, 1 faces up
    float slopeTopOpacity = 0.5f;
    float slopeBottomOpacity = 0.5f;
    std::int32_t slopeStyle = 0;  ///< 0 mix, 1 step

    std::int32_t inkoverEnable = 0;  ///< boolean
    std::int32_t inkoverObject = 1;  ///< boolean: react to hits on the sample's own object only
    std::int32_t maxTraceDepth = 1;  ///< rays that ink-over may trace; none when 0 or less
    float inkoverColor[3] = {0.0f, 0.0f, 0.0f};       ///< looked for behind the point
    float inkoverPaintColor[3] = {0.0f, 0.0f, 0.0f};  ///< painted where it is found

    std::int32_t colorTextureUse = 0;     ///< 0 none, 1 decal, 2 shaded
    std::int32_t reserved[6] = {};        ///< kept in the state block, used by nothing
    std::int32_t inkoverTranslucent = 0;  ///< nonzero: ink-over shows what lies behind instead
    std::int32_t lightPower = 0;          ///< 0 linear, 1 the sum's square root, 2 its cube root
    std::int32_t useAllLights = 1;        ///< boolean; 0: only the lights of lightList count
    float forceColor = 1.0f;              ///< 1 shows the colour as it is, 0 leaves it to the light

    std::int32_t activeTab = 0;         ///< panel tab last chosen, 0..5
    std::int32_t transparencyUsed = 0;  ///< boolean: some zone is transparent

    LightEntry* lightList = nullptr;  ///< owned, in the order of choice
    LightEntry* lightCursor = nullptr;
    Zone* zoneList = nullptr;  ///< owned, ascending by position
    Zone* zoneCursor = nullptr;
    Zone* selectedZone = nullptr;  ///< the zone that the panel edits

    char description[80] = {};
};

}  // namespace tavora
