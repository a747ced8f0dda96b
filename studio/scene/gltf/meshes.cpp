#include "studio/scene/gltf/meshes.h"

#include <fmt/format.h>

#include "studio/util/text.h"

namespace tavora::studio {
namespace {

// A small file whose accessors overlap could have any number of vertices. Real files stay far
// below this limit: an index takes at least a byte, a compressed one a tenth of that.
constexpr std::size_t kMaxValuesPerByte = 32;
constexpr std::size_t kValuesOfSmallFiles = std::size_t{1} << 22;

bool isTriangles(gltf::Mode mode) {
    return mode == gltf::Mode::Triangles || mode == gltf::Mode::TriangleStrip ||
           mode == gltf::Mode::TriangleFan;
}

MaterialNeeds needsOf(const std::vector<Surface>& surfaces, int material) {
    MaterialNeeds needs;
    if (material == gltf::kNone) return needs;
    const Surface& surface = surfaces[static_cast<std::size_t>(material)];
    if (surface.normalMap) needs.normalTexture = surface.normalTexture;
    needs.colors = !surface.toon;
    return needs;
}

}  // namespace

const std::vector<SourcePrimitive>& MeshStore::primitives(int index, Scene& scene) {
    const auto found = meshes_.find(index);
    if (found != meshes_.end()) return found->second;
    return meshes_.emplace(index, read(index, scene)).first->second;
}

std::vector<SourcePrimitive> MeshStore::read(int index, Scene& scene) {
    const gltf::Mesh& mesh = gltf::at(source_.document.meshes, index);
    std::vector<SourcePrimitive> result;
    for (std::size_t i = 0; i < mesh.primitives.size(); ++i) {
        const gltf::Primitive& primitive = mesh.primitives[i];
        const std::string where =
            fmt::format("mesh {} \"{}\", primitive {}", index, shortened(mesh.name), i);
        if (!isTriangles(primitive.mode)) {
            scene.warnings.push_back(oneLine(
                fmt::format("{}: {}: points and lines are not drawn", source_.path, where)));
            continue;
        }
        const MaterialNeeds needs = needsOf(scene.surfaces, primitive.material);
        result.push_back({geometryOf(primitive, needs, mesh.name, where), primitive.material});
    }
    return result;
}

std::shared_ptr<const PrimitiveGeometry> MeshStore::geometryOf(const gltf::Primitive& primitive,
                                                               const MaterialNeeds& needs,
                                                               const std::string& name,
                                                               const std::string& where) {
    const int compressed = primitive.compressed ? primitive.compressed->bufferView : gltf::kNone;
    const Key key{primitive.attributes, primitive.indices, primitive.mode,
                  primitive.targets,    compressed,        needs.key()};
    std::shared_ptr<const PrimitiveGeometry>& geometry = geometries_[key];
    if (geometry == nullptr) {
        auto fresh =
            std::make_shared<PrimitiveGeometry>(readPrimitive(source_, primitive, needs, where));
        fresh->mesh.name = name;
        countValues(*fresh, where);
        geometry = std::move(fresh);
    }
    return geometry;
}

std::size_t MeshStore::maxValues() const {
    return kMaxValuesPerByte * source_.totalBytes + kValuesOfSmallFiles;
}

void MeshStore::countValues(const PrimitiveGeometry& geometry, const std::string& where) {
    values_ += geometry.mesh.positions.size() * (1 + geometry.targets.size()) +
               geometry.mesh.triangles.size();
    if (values_ <= maxValues()) return;
    source_.fail(where + ": unpacks to far more than the file holds: export the file again");
}

}  // namespace tavora::studio
