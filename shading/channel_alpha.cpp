#include "shading/channel_alpha.h"

#include <algorithm>
#include <iterator>

#include "plugin/record/services.h"
#include "shading/vector_math.h"

namespace tavora {
namespace {

template <class Array>
void copyArray(const Array& from, Array& to) {
    std::copy(std::begin(from), std::end(from), std::begin(to));
}

void copyGeometry(const HostSample& sample, HostTexturePoint& point) {
    copyArray(sample.objectPosition, point.objectPosition);
    copyArray(sample.worldPosition, point.worldPosition);
    copyArray(sample.geometricNormal, point.geometricNormal);
    copyArray(sample.worldNormal, point.worldNormal);
    copyArray(sample.objectTransform, point.objectTransform);
    copyArray(sample.worldTransform, point.worldTransform);
    point.bumpHeight = sample.bumpHeight;
    point.spotSize = sample.spotSize;
}

void copyViewingRay(const HostSample& sample, HostTexturePoint& point) {
    dsub(sample.worldPosition, sample.raySource, point.rayDirection);
    normalize(point.rayDirection);
    copyArray(sample.raySource, point.raySource);
    point.rayLength = sample.rayLength;
    point.cosine = sample.cosine;
}

void copyIdentities(const HostSample& sample, HostTexturePoint& point) {
    point.objectId = sample.objectId;
    point.polygonId = sample.polygonId;
    point.polygonNumber = sample.polygonNumber;
    copyArray(sample.vertexIds, point.vertexIds);
    copyArray(sample.vertexWeights, point.vertexWeights);
    for (int i = 0; i < 4; ++i)
        copyArray(sample.vertexPositions[i], point.vertexPositions[i]);
}

double channelAlpha(const ShaderInstance* instance, const HostSample* sample, const char* channel) {
    if (instance->context == nullptr) return 0.0;
    HostTextureId texture = surff->channelTexture(instance->context, channel);
    if (texture == nullptr) return 0.0;

    HostTexturePoint point{};
    txfunc->layerParameter(txfunc->firstLayer(texture), HOST_LAYER_SCALE, point.objectScale);
    copyGeometry(*sample, point);
    copyViewingRay(*sample, point);
    copyIdentities(*sample, point);
    point.surfaceId = instance->context;
    double unused[3];
    return txfunc->evaluate(texture, &point, unused);
}

}  // namespace

double cb_getCOLRApha(const ShaderInstance* instance, const HostSample* sample) {
    return channelAlpha(instance, sample, HOST_CHANNEL_BASE_COLOR);
}

double cb_getTRANSLUCENTalpha(const ShaderInstance* instance, const HostSample* sample) {
    return channelAlpha(instance, sample, HOST_CHANNEL_TRANSLUCENCY);
}

}  // namespace tavora
