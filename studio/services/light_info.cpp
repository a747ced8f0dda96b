#include <algorithm>

#include "studio/scene/vectors.h"
#include "studio/services/service_binding.h"
#include "studio/services/service_tables.h"

namespace tavora::studio {
namespace {

const ResolvedLight* find(HostItemId light) {
    const ServiceBinding* binding = ServiceBinding::current();
    if (binding == nullptr) return nullptr;
    const auto index = lightIndex(binding->lights(), light);
    return index ? &binding->lights().lights[*index] : nullptr;
}

/// Ignores the time, like color(): lights are resolved for the time of the frame.
void ambient(double /*seconds*/, double color[3]) {
    const ServiceBinding* binding = ServiceBinding::current();
    if (binding != nullptr) {
        writeVector(binding->lights().ambient, color);
    } else {
        std::fill_n(color, 3, 0.0);
    }
}

int flags(HostItemId light) {
    const ResolvedLight* resolved = find(light);
    if (resolved == nullptr) return 0;
    int bits = 0;
    const bool limited = resolved->light->range < std::numeric_limits<float>::infinity();
    if (limited && ServiceBinding::current()->lights().falloff) bits |= HOST_LIGHT_LIMITED_RANGE;
    if (!resolved->light->makesHighlights) bits |= HOST_LIGHT_NO_SPECULAR;
    return bits;
}

void color(HostItemId light, double /*seconds*/, double result[3]) {
    const ResolvedLight* resolved = find(light);
    writeVector(resolved == nullptr ? Imath::V3d(0) : resolved->color, result);
}

}  // namespace

const HostLightInfo kLightInfo = {ambient, flags, color};

}  // namespace tavora::studio
