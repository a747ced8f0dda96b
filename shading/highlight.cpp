#include "shading/highlight.h"

#include "plugin/record/services.h"
#include "shading/render_pass.h"
#include "shading/vector_math.h"

namespace tavora {
namespace {

/// One call's working values, from light to light.
struct Painter {
    const ShaderInstance& settings;
    HostSample& sample;
    double atEntry[3];
    /// Unit, from the sample towards the viewer.
    double view[3];
    /// Cosines below it show nothing, whatever the settings.
    double leastCosine;
    /// In mode "Light" it stays with the last light asked.
    double highlight[3];
};

/// Where the ring begins, or the disc where that is lower.
double leastShowing(const ShaderInstance& settings) {
    const double disc = 1.0 - static_cast<double>(settings.highlightSize);
    const double ring = 1.0 - (static_cast<double>(settings.highlightOutlineSize) +
                               static_cast<double>(settings.highlightSize));
    return ring < disc ? ring : disc;
}

Painter startPainting(const ShaderInstance& settings, HostSample& sample) {
    Painter painter{settings, sample, {}, {}, leastShowing(settings), {}};
    dsub(sample.raySource, sample.worldPosition, painter.view);
    normalize(painter.view);
    for (int i = 0; i < 3; ++i) {
        painter.atEntry[i] = sample.color[i];
        painter.highlight[i] = static_cast<double>(settings.highlightColor[i]);
    }
    return painter;
}

bool makesHighlights(HostItemId light) {
    return lightinfo == nullptr || (lightinfo->flags(light) & HOST_LIGHT_NO_SPECULAR) == 0;
}

/// Whether the cosine between `view` and `mirror` is certainly below `least`:
/// told without a root and divisions. The margin is far wider than what
/// rounding does to vectors of about length 1; others are left to the cosine.
bool staysBelow(double least, const double view[3], const double mirror[3]) {
    constexpr double margin = 1e-6;
    const double bound = least - margin;
    const double square = dlenSquared(mirror);
    if (!(bound > 0.0 && square > 0.25 && square < 4.0)) return false;
    const double along = ddot(view, mirror);
    return along < 0.0 || along * along < bound * bound * square;
}

/// The direction of the light's mirror reflection, not yet of length 1.
void reflect(const double lightDirection[3], const double normal[3], double mirror[3]) {
    const double along = ddot(lightDirection, normal);
    for (int i = 0; i < 3; ++i)
        mirror[i] = lightDirection[i] - 2.0 * along * normal[i];
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

/// Paints what the cosine between reflection and view shows.
void paintAt(Painter& painter, double cosine) {
    const ShaderInstance& settings = painter.settings;
    const auto size = static_cast<double>(settings.highlightSize);
    const auto outlineSize = static_cast<double>(settings.highlightOutlineSize);
    if (settings.highlightOutlineEnable != 0 && 1.0 - (outlineSize + size) <= cosine &&
        cosine <= 1.0 - size) {
        paintOutline(painter);
    }
    // A cosine of exactly 1 makes no disc.
    if (settings.highlightEnable != 0 && 1.0 - size < cosine && cosine < 1.0) paintDisc(painter);
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

    double mirror[3];
    reflect(direction, sample.worldNormal, mirror);
    if (staysBelow(painter.leastCosine, painter.view, mirror)) return;
    normalize(mirror);
    paintAt(painter, ddot(painter.view, mirror));
}
}  // namespace

void drawSpec(ShaderInstance* instance, HostSample* sample, SceneLights& lights) {
    Painter painter = startPainting(*instance, *sample);
    LightEntry*& cursor = instance->lightCursor;
    for (cursor = instance->lightList; cursor != nullptr; cursor = cursor->next) {
        lights.eachNamed(cursor->name, [&](HostItemId light) {
            paintLight(painter, light);
            return true;
        });
    }
}

}  // namespace tavora
