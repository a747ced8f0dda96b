#pragma once

#include <algorithm>
#include <cmath>
#include <string>

#include "studio/scene/scene.h"

namespace tavora::studio {

/// What of a mesh the renderer cannot rely on; "" when it can on all.
inline std::string faultOf(const Mesh& mesh) {
    const std::size_t count = mesh.positions.size();
    const auto fits = [&](const auto& values) { return values.empty() || values.size() == count; };
    if (mesh.normals.size() != count || !fits(mesh.colors)) return "vertices";
    if (!std::all_of(mesh.uvs.begin(), mesh.uvs.end(), fits)) return "UVs";
    for (std::size_t i = 0; i < count; ++i) {
        const Imath::V3f& p = mesh.positions[i];
        const bool isUnit = std::abs(mesh.normals[i].length2() - 1) < 1e-5F;
        // Distances are taken from them, as floats.
        if (!isUnit || !std::isfinite(p.length2())) return "positions or normals";
    }
    for (const auto& t : mesh.triangles)
        if (std::max({t[0], t[1], t[2]}) >= count) return "triangles";
    return "";
}

/// The same of a whole scene.
inline std::string faultOf(const Scene& scene) {
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts) {
            if (static_cast<std::size_t>(part.surface) >= scene.surfaces.size()) return "surfaces";
            if (const std::string fault = faultOf(*part.mesh); !fault.empty()) return fault;
        }
    }
    for (const Camera& camera : scene.cameras)
        if (!std::isfinite(camera.cameraToWorld[0][0])) return "cameras";
    for (const auto& light : scene.lights)
        if (light->name.size() > 79 || !(std::abs(light->direction.length() - 1) < 1e-3))
            return "lights";
    return "";
}

}  // namespace tavora::studio
