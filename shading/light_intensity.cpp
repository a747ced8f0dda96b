#include "shading/light_intensity.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "plugin/record/services.h"
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

/// What the lights bring, as far as they were asked.
struct LightSum {
    double intensity = 0.0;
    double color[3] = {0.0, 0.0, 0.0};

    void add(double share, const double light[3]) {
        intensity += share;
        for (int i = 0; i < 3; ++i)
            color[i] += light[i];
    }
};

/// Adds one light. False when the walk needs no more: it reaches the sample, and
/// the sum is above 1.
[[gnu::always_inline]] inline bool addLight(HostItemId light, const HostSample* sample,
                                            LightSum& sum) {
    double direction[3];
    double color[3];
    if (sample->illuminate(light, sample->worldPosition, direction, color) == 0) return true;
    const double cosine = ddot(direction, sample->worldNormal);
    // Edge-on (0) still gives its colour; behind, or not a number, does not.
    if (cosine <= 0.0) sum.add(-cosine * (color[0] + color[1] + color[2]) / 3.0, color);
    return !(sum.intensity > 1.0);
}

void addAmbient(LightSum& sum) {
    double ambient[3];
    ambientColor(ambient);
    sum.add(mean(ambient), ambient);
}

LightSum sumAllLights(const HostSample* sample, SceneLights& lights) {
    LightSum sum;
    ambientColor(sum.color);
    sum.intensity = mean(sum.color);
    lights.each([&](HostItemId light) { return addLight(light, sample, sum); });
    return sum;
}

LightSum sumChosenLights(ShaderInstance* instance, const HostSample* sample, SceneLights& lights) {
    LightSum sum;
    LightEntry*& cursor = instance->lightCursor;
    for (; cursor != nullptr; cursor = cursor->next) {
        if (std::strcmp(cursor->name, "Ambient") == 0) addAmbient(sum);
        lights.eachNamed(cursor->name,
                         [&](HostItemId light) { return addLight(light, sample, sum); });
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
    const LightSum sum = instance->useAllLights != 0 ? sumAllLights(sample, lights)
                                                     : sumChosenLights(instance, sample, lights);
    std::copy_n(sum.color, 3, colorIllum);
    const double intensity = throughPowerCurve(sum.intensity, instance->lightPower);
    return intensity < 1.0 ? intensity : 1.0;
}

}  // namespace tavora
