#include "studio/render/sample_record.h"

#include <algorithm>
#include <cmath>

#include "host/handler.h"

namespace tavora::studio {
namespace {

void fill(const Imath::V3d& from, double to[3]) {
    to[0] = from.x;
    to[1] = from.y;
    to[2] = from.z;
}

HostPointId vertexId(const Mesh& mesh, std::uint32_t vertex) {
    return reinterpret_cast<HostPointId>(const_cast<Imath::V3f*>(&mesh.positions[vertex]));
}

/// A triangle leaves the record's fourth corner empty.
void fillVertices(const SurfacePoint& point, HostSample& record) {
    for (std::size_t i = 0; i < 3; ++i) {
        record.vertexIds[i] = vertexId(*point.geometry->source->mesh, point.vertices[i]);
        record.vertexWeights[i] = static_cast<float>(point.weights[i]);
        const Imath::V3f& corner = point.geometry->vertices[point.vertices[i]];
        std::copy_n(&corner.x, 3, record.vertexPositions[i]);
    }
    record.vertexIds[3] = nullptr;
    record.vertexWeights[3] = 0;
    std::fill_n(record.vertexPositions[3], 3, 0.0F);
}

void fillIdentities(const RayScene& scene, const SurfacePoint& point, HostSample& record) {
    const SceneMesh& source = *point.geometry->source;
    record.objectId = itemId(source.object);
    record.polygonNumber = source.part->firstPolygon + static_cast<std::int32_t>(point.triangle);
    record.polygonId = scene.index().polygonId(point.geometry->number, point.triangle);
}

void fillSight(const SurfacePoint& point, const Viewpoint& from, HostSample& record) {
    record.spotSize = point.spotSize;
    fill(from.position, record.raySource);
    record.rayLength = (point.position - from.position).length();
    record.cosine = std::clamp(-from.direction.dot(point.normal), 0.0, 1.0);
}

void fillValues(const SampleValues& values, HostSample& record) {
    fill(values.color, record.color);
    record.luminosity = values.luminosity;
    record.diffuse = values.diffuse;
    record.specular = values.specular;
    record.transparency = values.transparency;
}

bool isSound(const SampleValues& values) {
    return std::isfinite(values.color.x) && std::isfinite(values.color.y) &&
           std::isfinite(values.color.z) && std::isfinite(values.luminosity) &&
           std::isfinite(values.diffuse) && std::isfinite(values.specular);
}

double finiteOr(double value, double other) {
    return std::isfinite(value) ? value : other;
}

}  // namespace

void fillRecord(const RayScene& scene, const SurfacePoint& point, const Viewpoint& from,
                const SampleValues& values, HostSample& record) {
    fill(point.position * point.geometry->worldToObject, record.objectPosition);
    fill(point.position, record.worldPosition);
    fill(point.geometricNormal, record.geometricNormal);
    fill(point.normal, record.worldNormal);
    std::copy_n(point.geometry->objectTransform, 9, record.objectTransform);
    std::copy_n(point.geometry->worldTransform, 9, record.worldTransform);
    fillSight(point, from, record);
    fillIdentities(scene, point, record);
    fillVertices(point, record);
    fillValues(values, record);
    record.bumpHeight = 0;
}

SampleValues takeBack(const SampleValues& before, unsigned flags, HostSample& record) {
    SampleValues values = before;
    if ((flags & HOST_SHADER_COLOR) != 0)
        values.color = {record.color[0], record.color[1], record.color[2]};
    if ((flags & HOST_SHADER_LUMINOUS) != 0) values.luminosity = record.luminosity;
    if ((flags & HOST_SHADER_DIFFUSE) != 0) values.diffuse = record.diffuse;
    if ((flags & HOST_SHADER_SPECULAR) != 0) values.specular = record.specular;
    if ((flags & HOST_SHADER_TRANSPARENCY) != 0) values.transparency = record.transparency;
    // Black as a whole: one broken channel would leave a false colour.
    if (!isSound(values)) values = {Imath::V3d(0), 0, 0, 0, values.transparency};
    values.transparency = std::clamp(finiteOr(values.transparency, 0), 0.0, 1.0);
    fillValues(values, record);
    return values;
}

}  // namespace tavora::studio
