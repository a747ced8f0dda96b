#pragma once

#include "studio/scene/scene.h"

namespace tavora::studio {

/// Adds an object of these triangles with a surface of its own.
inline Surface& addTriangles(Scene& scene, std::vector<Imath::V3f> positions,
                             std::vector<std::array<std::uint32_t, 3>> triangles) {
    auto mesh = std::make_shared<Mesh>();
    mesh->positions = std::move(positions);
    mesh->triangles = std::move(triangles);
    for (const Imath::V3f& position : mesh->positions)
        scene.bounds.extendBy(Imath::V3d(position));
    auto object = std::make_unique<Object>();
    object->parts.push_back({mesh, static_cast<int>(scene.surfaces.size()), 0});
    scene.objects.push_back(std::move(object));
    return scene.surfaces.emplace_back();
}

/// A closed box; its faces look outwards.
inline Surface& addBox(Scene& scene, const Imath::V3f& low, const Imath::V3f& high) {
    std::vector<Imath::V3f> corners;
    for (unsigned i = 0; i < 8; ++i) {
        corners.emplace_back((i & 1U) ? high.x : low.x, (i & 2U) ? high.y : low.y,
                             (i & 4U) ? high.z : low.z);
    }
    return addTriangles(scene, std::move(corners),
                        {{0, 2, 3},
                         {0, 3, 1},
                         {4, 5, 7},
                         {4, 7, 6},
                         {0, 1, 5},
                         {0, 5, 4},
                         {2, 6, 7},
                         {2, 7, 3},
                         {0, 4, 6},
                         {0, 6, 2},
                         {1, 3, 7},
                         {1, 7, 5}});
}

}  // namespace tavora::studio
