#include "shading/ink_over.h"

#include <memory>
#include <new>

#include "shading/channel_alpha.h"
#include "shading/vector_math.h"

namespace tavora {
namespace {

/// The viewing ray beyond the sample, and what it hit.
struct Onward {
    HostSample& sample;
    HostSample& hit;
    double direction[3];

    double trace() { return sample.traceAndShade(sample.worldPosition, direction, &hit); }
};

void showThrough(ShaderInstance* instance, Onward onward) {
    // No hit: below 0, or not a number.
    if (!(onward.trace() >= 0.0)) return;
    const double alpha = cb_getTRANSLUCENTalpha(instance, &onward.hit);
    if (alpha == 0.0) return;
    double* color = onward.sample.color;
    for (int i = 0; i < 3; ++i) {
        color[i] = (1.0 - alpha) * color[i] + alpha * onward.hit.color[i];
    }
}

bool showsInk(const ShaderInstance& settings, const HostSample& hit) {
    for (int i = 0; i < 3; ++i) {
        if (hit.color[i] != static_cast<double>(settings.inkoverColor[i])) return false;
    }
    return true;
}

bool findsInk(const ShaderInstance& settings, Onward& onward) {
    if (!(onward.trace() > 0.0)) return false;
    if (settings.inkoverObject != 0 && onward.hit.objectId != onward.sample.objectId) return false;
    return showsInk(settings, onward.hit);
}

void inkOver(const ShaderInstance& settings, Onward onward) {
    // Every attempt casts the same ray: what the host answers may change.
    for (std::int32_t attempt = 0; attempt < settings.maxTraceDepth; ++attempt) {
        if (!findsInk(settings, onward)) continue;
        for (int i = 0; i < 3; ++i) {
            onward.sample.color[i] = static_cast<double>(settings.inkoverPaintColor[i]);
        }
        return;
    }
}

}  // namespace

void drawInkOver(ShaderInstance* instance, HostSample* sample) {
    const std::unique_ptr<HostSample> hit(new (std::nothrow) HostSample{});
    if (hit == nullptr) return;

    Onward onward{*sample, *hit, {}};
    dsub(sample->worldPosition, sample->raySource, onward.direction);
    normalize(onward.direction);
    if (instance->inkoverTranslucent != 0) {
        showThrough(instance, onward);
    } else {
        inkOver(*instance, onward);
    }
}

}  // namespace tavora
