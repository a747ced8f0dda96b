#include "studio/render/shade/sample_record.h"

#include <algorithm>
#include <cmath>

#include "host/handler.h"
#include "studio/scene/vectors.h"

namespace tavora::studio {
namespace {

HostPointId vertexId(const Mesh& mesh, std::uint32_t vertex) {
    return reinterpret_cast<HostPointId>(const_cast<Imath::V3f*>(&mesh.positions[vertex]));
}

/// A triangle leaves the record's fourth corner empty.
void fillVertices(const Facet& facet, HostSample& record) {
    for (std::size_t i = 0; i < 3; ++i) {
        record.vertexIds[i] = vertexId(*facet.source().mesh, facet.vertices[i]);
        const Imath::V3f corner(facet.corners[i]);
        std::copy_n(&corner.x, 3, record.vertexPositions[i]);
    }
    record.vertexIds[3] = nullptr;
    record.vertexWeights[3] = 0;
    std::fill_n(record.vertexPositions[3], 3, 0.0F);
}

void fillIdentities(const RayScene& scene, const Facet& facet, HostSample& record) {
    const FacetKey& key = facet.key;
    const SceneMesh& source = facet.source();
    record.objectId = itemId(source.object);
    record.polygonNumber = source.part->firstPolygon + static_cast<std::int32_t>(key.triangle);
    record.polygonId = scene.index().polygonId(key.geometry->number, key.triangle);
}

/// Nothing is NaN or infinite: these times 0 are NaN, all else times 0 is 0.
bool isSound(const SampleValues& values) {
    const Imath::V3d& color = values.color;
    return color.x * 0 + color.y * 0 + color.z * 0 + values.luminosity * 0 + values.diffuse * 0 +
               values.specular * 0 ==
           0;
}

double finiteOr(double value, double other) {
    return std::isfinite(value) ? value : other;
}

}  // namespace

void fillFacet(const RayScene& scene, const Facet& facet, HostSample& record) {
    writeVector(facet.normal, record.geometricNormal);
    std::copy_n(facet.key.geometry->objectTransform, 9, record.objectTransform);
    std::copy_n(facet.key.geometry->worldTransform, 9, record.worldTransform);
    fillIdentities(scene, facet, record);
    fillVertices(facet, record);
    record.bumpHeight = 0;
}

void fillPoint(const SurfacePoint& point, const Viewpoint& from, HostSample& record) {
    writeVector(toObject(*point.facet->key.geometry, point.position), record.objectPosition);
    writeVector(point.position, record.worldPosition);
    writeVector(point.normal, record.worldNormal);
    for (std::size_t i = 0; i < 3; ++i)
        record.vertexWeights[i] = static_cast<float>(point.weights[i]);
    record.spotSize = point.footprint;
    writeVector(from.position, record.raySource);
    record.rayLength = from.distance;
    record.cosine = std::clamp(-from.direction.dot(point.normal), 0.0, 1.0);
}

void takeBack(unsigned flags, const HostSample& record, SampleValues& values) {
    if ((flags & HOST_SHADER_COLOR) != 0)
        values.color = {record.color[0], record.color[1], record.color[2]};
    if ((flags & HOST_SHADER_LUMINOUS) != 0) values.luminosity = record.luminosity;
    if ((flags & HOST_SHADER_DIFFUSE) != 0) values.diffuse = record.diffuse;
    if ((flags & HOST_SHADER_SPECULAR) != 0) values.specular = record.specular;
    if ((flags & HOST_SHADER_TRANSPARENCY) != 0) values.transparency = record.transparency;
    // Black as a whole: one broken channel would leave a false colour.
    if (!isSound(values)) values = {Imath::V3d(0), 0, 0, 0, values.transparency};
    values.transparency = std::clamp(finiteOr(values.transparency, 0), 0.0, 1.0);
}

}  // namespace tavora::studio
