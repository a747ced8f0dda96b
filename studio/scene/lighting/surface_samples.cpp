#include "studio/scene/lighting/surface_samples.h"

#include <algorithm>
#include <cmath>

namespace tavora::studio {
namespace {

using Imath::V3d;

constexpr double kByArea = 4096;        // samples that meshes get in proportion to their areas
constexpr std::size_t kByMesh = 16384;  // samples in equal numbers, at most one a triangle
constexpr std::size_t kMaxByMesh = 64;  // of these, for one mesh

/// A mesh of an object, whose transform places it in the world.
struct Patch {
    const Object* object = nullptr;
    const Mesh* mesh = nullptr;
    double opacity = 1;
    bool doubleSided = false;
    double area = 0;
};

using Corners = std::array<V3d, 3>;

Corners cornersOf(const Patch& patch, const std::array<std::uint32_t, 3>& triangle) {
    Corners corners;
    for (std::size_t i = 0; i < corners.size(); ++i)
        corners[i] = V3d(patch.mesh->positions[triangle[i]]) * patch.object->objectToWorld;
    return corners;
}

/// A normal of the triangle whose length is twice the triangle's area.
V3d doubleAreaVector(const Corners& corners) {
    return (corners[1] - corners[0]).cross(corners[2] - corners[0]);
}

double areaOf(const Corners& corners) {
    const double area = doubleAreaVector(corners).length() / 2;
    return std::isfinite(area) ? area : 0;
}

double areaOf(const Patch& patch) {
    double area = 0;
    for (const auto& triangle : patch.mesh->triangles)
        area += areaOf(cornersOf(patch, triangle));
    return area;
}

/// The meshes that light can change: those with an area and a surface that is not unlit.
std::vector<Patch> litPatches(const Scene& scene) {
    std::vector<Patch> patches;
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts) {
            const Surface& surface = scene.surfaces.at(static_cast<std::size_t>(part.surface));
            if (surface.unlit) continue;
            Patch patch{object.get(), part.mesh.get(), 1, surface.doubleSided, 0};
            if (surface.alphaMode == AlphaMode::Blend)
                patch.opacity = std::clamp(static_cast<double>(surface.baseColor.w), 0.0, 1.0);
            patch.area = areaOf(patch);
            if (patch.area > 0) patches.push_back(patch);
        }
    }
    return patches;
}

/// The n-th point of a sequence that fills a triangle evenly: the R2 sequence (see
/// area_light.cpp), folded over the unit square's diagonal.
V3d pointInside(const Corners& corners, std::size_t n) {
    const auto fraction = [n](double step) {
        const double x = 0.5 + step * static_cast<double>(n);
        return x - std::floor(x);
    };
    double u = fraction(0.7548776662466927);
    double v = fraction(0.5698402909980532);
    if (u + v > 1) {
        u = 1 - u;
        v = 1 - v;
    }
    return corners[0] + (corners[1] - corners[0]) * u + (corners[2] - corners[0]) * v;
}

/// Adds `count` samples of the patch. Each represents the same area: the triangles' areas
/// are laid end to end, and the samples are evenly spaced along them.
void addPoints(const Patch& patch, std::size_t count, std::vector<SurfaceSample>& points) {
    const double step = patch.area / static_cast<double>(count);
    double area = 0;
    std::size_t added = 0;
    for (const auto& triangle : patch.mesh->triangles) {
        const Corners corners = cornersOf(patch, triangle);
        area += areaOf(corners);
        for (; added < count && (static_cast<double>(added) + 0.5) * step < area; ++added) {
            SurfaceSample point;
            point.position = pointInside(corners, added);
            point.normal =
                doubleAreaVector(corners).normalized() * (patch.object->mirrored ? -1.0 : 1.0);
            point.area = step * patch.opacity;
            point.doubleSided = patch.doubleSided;
            points.push_back(point);
        }
    }
}

}  // namespace

std::vector<SurfaceSample> surfaceSamples(const Scene& scene) {
    const std::vector<Patch> patches = litPatches(scene);
    double area = 0;
    for (const Patch& patch : patches)
        area += patch.area;
    const std::size_t perMesh =
        std::clamp<std::size_t>(kByMesh / std::max<std::size_t>(patches.size(), 1), 1, kMaxByMesh);
    std::vector<SurfaceSample> points;
    for (const Patch& patch : patches) {
        const auto byArea = static_cast<std::size_t>(kByArea * (patch.area / area));
        addPoints(patch, byArea + std::min(perMesh, patch.mesh->triangles.size()), points);
    }
    return points;
}

}  // namespace tavora::studio
