#include "shading/evaluate.h"

#include "plugin/record/services.h"
#include "plugin/record/shader_instance.h"
#include "plugin/record/zone.h"
#include "shading/channel_alpha.h"
#include "shading/highlight.h"
#include "shading/ink_over.h"
#include "shading/light_intensity.h"
#include "shading/overlays.h"
#include "shading/render_pass.h"
#include "shading/scene_lights.h"
#include "shading/vector_math.h"
#include "zones/zone_lookup.h"

namespace tavora {
namespace {

enum ColorTextureUse { decal = 1, shaded = 2 };

/// Holds the module's mutex, where there is one.
class EvaluationLock {
  public:
    EvaluationLock() : object_(mtid) {
        if (object_ != nullptr) mtutil->lock(object_, 0);
    }
    ~EvaluationLock() {
        if (object_ != nullptr) mtutil->unlock(object_, 0);
    }
    EvaluationLock(const EvaluationLock&) = delete;
    EvaluationLock& operator=(const EvaluationLock&) = delete;

  private:
    HostMutexId object_;
};

/// At most 1; 1 when not a number.
double upToOne(double value) {
    return value < 1.0 ? value : 1.0;
}

double lerp(double from, double to, double weight) {
    return (1.0 - weight) * from + weight * to;
}

/// The gradient's colour under the surface's own texture.
void shadeTexture(ShaderInstance* instance, const HostSample* sample, const double base[3],
                  double zoneColor[3]) {
    const double grey = (zoneColor[0] + zoneColor[1] + zoneColor[2]) / 3.0;
    const double alpha = cb_getCOLRApha(instance, sample);
    for (int i = 0; i < 3; ++i)
        zoneColor[i] = lerp(base[i], zoneColor[i], alpha) * grey;
}

/// Mixes the looked-up colour over the base colour by the zone's opacity (a
/// second time: the lookup did so too), then applies saturation and brightness.
void mixZone(const double base[3], const double zoneColor[3], HostSample* sample) {
    float mixed[3];
    for (int i = 0; i < 3; ++i) {
        mixed[i] = static_cast<float>(static_cast<double>(1.0f - gradAlpha) * base[i] +
                                      static_cast<double>(gradAlpha) * zoneColor[i]);
    }
    for (int i = 0; i < 3; ++i) {
        sample->color[i] = static_cast<double>(gradBright) *
                           saturate(mixed[i], mixed[0], mixed[1], mixed[2], gradSat);
    }
}

/// Tints by the light colour, shifted to a mean of 1.
void tintByLight(const Zone& zone, HostSample* sample) {
    const double shift = 1.0 - (colorIllum[0] + colorIllum[1] + colorIllum[2]) / 3.0;
    const auto keep = static_cast<double>(1.0f - zone.accountLightOpac);
    const auto opacity = static_cast<double>(zone.accountLightOpac);
    for (int i = 0; i < 3; ++i) {
        const double color = sample->color[i];
        sample->color[i] = keep * color + opacity * color * (colorIllum[i] + shift);
    }
}

/// Colour and transparency from the gradient at the sample's intensity.
void applyZones(ShaderInstance* instance, HostSample* sample, const double base[3],
                SceneLights& lights) {
    const double intensity =
        upToOne(cb_lightIntensity(instance, sample, lights) + sample->luminosity);
    double zoneColor[3];
    evalColors(instance, intensity, *sample, zoneColor);
    if (instance->colorTextureUse == shaded) shadeTexture(instance, sample, base, zoneColor);
    mixZone(base, zoneColor, sample);

    // Null only in a record without zones.
    const Zone* zone = instance->zoneCursor;
    if (zone == nullptr) return;
    if (instance->transparencyUsed != 0) {
        sample->transparency = upToOne(static_cast<double>(zone->trans) + sample->transparency);
    }
    if (zone->accountLights != 0 && intensity > 0.0) tintByLight(*zone, sample);
}

/// Lays the shaded colour on like a decal, where the colour texture covers.
void applyDecal(const ShaderInstance* instance, HostSample* sample, const double base[3]) {
    const double alpha = cb_getCOLRApha(instance, sample);
    for (int i = 0; i < 3; ++i) {
        sample->color[i] = alpha * sample->color[i] + (1.0 - alpha) * base[i];
    }
}

void applyStages(ShaderInstance* instance, HostSample* sample, SceneLights& lights) {
    if (instance->slopeEnable != 0) applySlope(*instance, *sample);
    if (instance->highlightEnable != 0 || instance->highlightOutlineEnable != 0) {
        drawSpec(instance, sample, lights);
    }
    if (instance->edgeEnable != 0) applyEdge(*instance, *sample);
    if (instance->inkoverEnable != 0) drawInkOver(instance, sample);
}

/// Turns the host's response to light into luminosity. Each value is rounded
/// to single precision.
void forceColor(const ShaderInstance* instance, HostSample* sample) {
    const auto keep = static_cast<double>(1.0f - instance->forceColor);
    const auto force = static_cast<double>(instance->forceColor);
    sample->diffuse = static_cast<double>(static_cast<float>(keep * sample->diffuse));
    sample->luminosity = static_cast<double>(static_cast<float>(keep * sample->luminosity + force));
    sample->specular = static_cast<double>(static_cast<float>(keep * sample->specular));
}

}  // namespace

void Evaluate(HostInstance instance, HostSample* sample) {
    if (iteminfo == nullptr) return;
    const EvaluationLock lock;
    auto* record = static_cast<ShaderInstance*>(instance);
    record->lightCursor = record->lightList;
    record->zoneCursor = record->zoneList;
    const double base[3] = {sample->color[0], sample->color[1], sample->color[2]};

    SceneLights lights;
    applyZones(record, sample, base, lights);
    if (record->colorTextureUse == decal) applyDecal(record, sample, base);
    applyStages(record, sample, lights);
    // Ink-over may have evaluated this record again: from here on no module
    // global and no cursor counts.
    forceColor(record, sample);
}

}  // namespace tavora
