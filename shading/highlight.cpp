#include "shading/highlight.h"

#include <algorithm>
#include <iterator>

#include "plugin/services.h"
#include "shading/render_pass.h"
#include "shading/scene_lights.h"
#include "shading/vector_math.h"

namespace tavora {
namespace {

/// One call's working values, from light to light.
struct Painter {
    const ShaderInstance& settings;
    HostSample& sample;
    double atEntry[3];
    /// In mode "Light" it stays with the last light asked.
    double highlight[3];
};

Painter startPainting(const ShaderInstance& settings, HostSample& sample) {
    Painter painter{settings, sample, {}, {}};
    std::copy(std::begin(sample.color), std::end(sample.color), painter.atEntry);
    for (int i = 0; i < 3; ++i) {
        painter.highlight[i] = static_cast<double>(settings.highlightColor[i]);
    }
    return painter;
}

bool makesHighlights(HostItemId light) {
    return lightinfo == nullptr || (lightinfo->flags(light) & HOST_LIGHT_NO_SPECULAR) == 0;
}

/// Cosine between the light's mirror reflection and the direction to the viewer.
double reflectionCosine(const double lightDirection[3], const HostSample& sample) {
    const double along = ddot(lightDirection, sample.worldNormal);
    double mirror[3];
    for (int i = 0; i < 3; ++i) {
        mirror[i] = lightDirection[i] - 2.0 * along * sample.worldNormal[i];
    }
    normalize(mirror);
    double view[3];
    dsub(sample.raySource, sample.worldPosition, view);
    normalize(view);
    return ddot(view, mirror);
}

void paintOutline(Painter& painter) {
    const float opacity = painter.settings.highlightOutlineOpacity;
    for (int i = 0; i < 3; ++i) {
        painter.sample.color[i] =
            static_cast<double>(1.0f - opacity) * painter.atEntry[i] +
            static_cast<double>(opacity * painter.settings.highlightOutlineColor[i]);
    }
}

void paintDisc(Painter& painter) {
    const float opacity = painter.settings.highlightOpacity;
    for (int i = 0; i < 3; ++i) {
        painter.sample.color[i] = static_cast<double>(1.0f - opacity) * painter.atEntry[i] +
                                  static_cast<double>(opacity) * painter.highlight[i];
    }
}

void paintLight(Painter& painter, HostItemId light) {
    const ShaderInstance& settings = painter.settings;
    if (!makesHighlights(light)) return;
    if (settings.highlightEnable == 2 && lightinfo != nullptr) {
        lightinfo->color(light, currentTime, painter.highlight);
    }
    double direction[3];
    double unused[3];
    HostSample& sample = painter.sample;
    if (sample.illuminate(light, sample.worldPosition, direction, unused) == 0) return;

    const double cosine = reflectionCosine(direction, sample);
    const auto size = static_cast<double>(settings.highlightSize);
    const auto outlineSize = static_cast<double>(settings.highlightOutlineSize);
    if (settings.highlightOutlineEnable != 0 && 1.0 - (outlineSize + size) <= cosine &&
        cosine <= 1.0 - size) {
        paintOutline(painter);
    }
    // A cosine of exactly 1 makes no disc.
    if (settings.highlightEnable != 0 && 1.0 - size < cosine && cosine < 1.0) paintDisc(painter);
}

}  // namespace

void drawSpec(ShaderInstance* instance, HostSample* sample) {
    Painter painter = startPainting(*instance, *sample);
    LightEntry*& cursor = instance->lightCursor;
    for (cursor = instance->lightList; cursor != nullptr; cursor = cursor->next) {
        for (HostItemId light = firstLight(); light != nullptr; light = iteminfo->next(light)) {
            if (isNamed(light, *cursor)) paintLight(painter, light);
        }
    }
}

}  // namespace tavora
