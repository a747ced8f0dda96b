#include "shading/light_intensity.h"

#include <cmath>
#include <cstring>

#include "plugin/services.h"
#include "shading/render_pass.h"
#include "shading/vector_math.h"

namespace tavora {

double colorIllum[3] = {0.0, 0.0, 0.0};

namespace {

double mean(const double color[3]) {
    return (color[0] + color[1] + color[2]) / 3.0;
}

void ambientColor(double color[3]) {
    color[0] = color[1] = color[2] = 0.0;
    if (lightinfo != nullptr) lightinfo->ambient(currentTime, color);
}

/// Adds one light to `sum` and `colorIllum`. False when it does not reach the
/// sample at all.
bool addLight(HostItemId light, const HostSample* sample, double& sum) {
    double direction[3];
    double color[3];
    if (sample->illuminate(light, sample->worldPosition, direction, color) == 0) return false;
    const double cosine = ddot(direction, sample->worldNormal);
    // Edge-on (0) still gives its colour; behind, or not a number, does not.
    if (!(cosine <= 0.0)) return true;
    sum += -cosine * (color[0] + color[1] + color[2]) / 3.0;
    for (int i = 0; i < 3; ++i)
        colorIllum[i] += color[i];
    return true;
}

double sumAllLights(const HostSample* sample, SceneLights& lights) {
    ambientColor(colorIllum);
    double sum = mean(colorIllum);
    lights.each([&](HostItemId light) { return !addLight(light, sample, sum) || !(sum > 1.0); });
    return sum;
}

void addAmbient(double& sum) {
    double ambient[3];
    ambientColor(ambient);
    sum += mean(ambient);
    for (int i = 0; i < 3; ++i)
        colorIllum[i] += ambient[i];
}

double sumChosenLights(ShaderInstance* instance, const HostSample* sample, SceneLights& lights) {
    double sum = 0.0;
    for (double& channel : colorIllum)
        channel = 0.0;
    LightEntry*& cursor = instance->lightCursor;
    for (; cursor != nullptr; cursor = cursor->next) {
        if (std::strcmp(cursor->name, "Ambient") == 0) addAmbient(sum);
        lights.eachNamed(cursor->name, [&](HostItemId light) {
            return !addLight(light, sample, sum) || !(sum > 1.0);
        });
    }
    return sum;
}

double throughPowerCurve(double sum, int lightPower) {
    // No root of 1 or more, or of no number, ends below 1.
    if (!(sum < 1.0)) return 1.0;
    switch (lightPower) {
        case 1:
            return std::pow(sum, 0.5);
        case 2:
            return std::pow(sum, 0.333333);
        default:
            return sum;
    }
}

}  // namespace

double cb_lightIntensity(ShaderInstance* instance, const HostSample* sample, SceneLights& lights) {
    instance->lightCursor = instance->lightList;
    const double sum = instance->useAllLights != 0 ? sumAllLights(sample, lights)
                                                   : sumChosenLights(instance, sample, lights);
    const double intensity = throughPowerCurve(sum, instance->lightPower);
    return intensity < 1.0 ? intensity : 1.0;
}

}  // namespace tavora
