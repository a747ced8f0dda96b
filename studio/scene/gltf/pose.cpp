#include "studio/scene/gltf/pose.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>

#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/lights_cameras.h"
#include "studio/scene/gltf/mesh_bending.h"
#include "studio/scene/mesh/normals.h"
#include "studio/scene/mesh/tangents.h"
#include "studio/util/text.h"
#include "studio/util/unique_names.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;

constexpr std::size_t kLongestLightName = 79;  // bytes; longer ones are cut by what reads them
constexpr std::size_t kCrowd = std::size_t{1} << 24;  // vertices and triangles of a large one

std::string nameOr(const std::string& name, const std::string& second, const char* kind,
                   int index) {
    if (!name.empty()) return name;
    return !second.empty() ? second : fmt::format("{} {}", kind, index);
}

/// Bytes.
std::uint64_t memoryOf(const Mesh& mesh) {
    std::uint64_t bytes = (mesh.positions.size() + mesh.normals.size()) * sizeof(Imath::V3f) +
                          mesh.colors.size() * sizeof(Imath::V4f) +
                          mesh.triangles.size() * sizeof(mesh.triangles[0]) +
                          mesh.tangents.size() * sizeof(CornerTangents);
    for (const auto& set : mesh.uvs)
        bytes += set.size() * sizeof(Imath::V2f);
    return bytes;
}

/// One pose of one file.
class Posing {
  public:
    Posing(const GltfSource& source, MeshStore& meshes, const std::vector<NodePose>& poses,
           Scene& scene)
        : source_(source),
          meshes_(meshes),
          poses_(poses),
          scene_(scene),
          placed_(placeNodes(source, poses)),
          lightNames_(kLongestLightName) {}

    void run() {
        for (int node : placed_.drawn)
            place(node);
        if (scene_.objects.empty()) {
            scene_.warnings.push_back(oneLine(source_.path) + ": has nothing to draw");
        }
    }

  private:
    void place(int index) {
        const gltf::Node& node = gltf::at(source_.document.nodes, index);
        if (node.mesh != gltf::kNone) placeMesh(node, index);
        if (node.camera != gltf::kNone) placeCamera(node, index);
        if (node.light != gltf::kNone) placeLight(node, index);
    }

    const M44d& toWorld(int node) const { return placed_.toWorld[static_cast<std::size_t>(node)]; }

    // --- meshes ---

    void placeMesh(const gltf::Node& node, int index) {
        auto object = std::make_unique<Object>();
        object->name = nameOr(node.name, "", "Object", index);
        if (node.skin < 0) {
            const auto transform = unflattened(toWorld(index));
            if (!transform) return;  // scaled to nothing
            object->objectToWorld = *transform;
            object->mirrored = transform->determinant() < 0;
        } else {
            object->mirrored = jointsOf(node.skin).mirrored;
        }
        addParts(node, index, *object);
        if (!object->parts.empty()) scene_.objects.push_back(std::move(object));
    }

    void addParts(const gltf::Node& node, int index, Object& object) {
        std::int32_t polygons = 0;
        for (const SourcePrimitive& primitive : meshes_.primitives(node.mesh, scene_)) {
            Part part;
            part.mesh = posedMesh(node, index, *primitive.geometry, primitive.geometry);
            part.surface = surfaceOf(primitive.material);
            part.firstPolygon = polygons;
            if (part.mesh->triangles.empty()) continue;
            polygons += static_cast<std::int32_t>(part.mesh->triangles.size());
            extendBounds(*part.mesh, object.objectToWorld);
            object.parts.push_back(std::move(part));
        }
    }

    int surfaceOf(int material) const {
        return material < 0 ? static_cast<int>(scene_.surfaces.size()) - 1 : material;
    }

    const std::vector<double>& weightsOf(const gltf::Node& node, int index) const {
        const auto& own = poses_[static_cast<std::size_t>(index)].weights;
        return !own.empty() ? own : gltf::at(source_.document.meshes, node.mesh).weights;
    }

    /// Accounts for a bent copy: a small file could ask for any number of them.
    void spend(const Mesh& mesh, int node) {
        source_.memory->take(memoryOf(mesh), fmt::format("the bent mesh of node {}", node));
        bent_ += mesh.positions.size() + mesh.triangles.size();
        if (bent_ <= meshes_.mostValues() + kCrowd) return;
        source_.fail(
            fmt::format("node {} is one too many with a mesh of its own shape: use fewer "
                        "skinned or morphed nodes",
                        node));
    }

    /// The mesh as stored where nothing bends it, else a copy that is bent.
    std::shared_ptr<const Mesh> posedMesh(const gltf::Node& node, int index,
                                          const PrimitiveGeometry& geometry,
                                          const std::shared_ptr<const PrimitiveGeometry>& owner) {
        const std::vector<double>& weights = weightsOf(node, index);
        const bool morphs =
            !geometry.targets.empty() &&
            std::any_of(weights.begin(), weights.end(), [](double w) { return w != 0; });
        if (!morphs && node.skin < 0) return {owner, &geometry.mesh};
        const auto key = std::make_pair(&geometry, weights);
        if (node.skin < 0 && morphed_.count(key) != 0) return morphed_[key];

        spend(geometry.mesh, index);
        auto mesh = std::make_shared<Mesh>(geometry.mesh);
        morph(geometry, weights, *mesh);
        if (!geometry.flat) repairNormals(*mesh);
        if (morphs && geometry.tangentsMadeFor) remakeTangents(geometry, *mesh);
        if (node.skin >= 0) hang(node, geometry, *mesh);
        if (geometry.flat) {
            makeFlatNormals(*mesh);
            if (node.skin >= 0 && jointsOf(node.skin).mirrored) turnNormals(*mesh);
        }
        checkFinite(*mesh, index);
        if (node.skin < 0) morphed_[key] = mesh;
        return mesh;
    }

    void checkFinite(const Mesh& mesh, int node) const {
        const bool finite =
            std::all_of(mesh.positions.begin(), mesh.positions.end(),
                        [](const Imath::V3f& p) { return std::isfinite(p.x + p.y + p.z); });
        if (finite) return;
        source_.fail(
            fmt::format("node {} bends its mesh beyond all numbers: repair the model", node));
    }

    static void remakeTangents(const PrimitiveGeometry& geometry, Mesh& mesh) {
        if (geometry.flat) makeFlatNormals(mesh);
        mesh.tangents = makeTangents(mesh, *geometry.tangentsMadeFor);
    }

    void hang(const gltf::Node& node, const PrimitiveGeometry& geometry, Mesh& mesh) {
        if (skin(geometry, jointsOf(node.skin), mesh)) return;
        source_.fail(fmt::format(
            "mesh {} \"{}\" hangs on a joint that skin {} does not have: export the file again",
            node.mesh, shortened(mesh.name), node.skin));
    }

    static void turnNormals(Mesh& mesh) {
        for (Imath::V3f& n : mesh.normals)
            n = -n;
    }

    const JointPose& jointsOf(int index) {
        const auto known = joints_.find(index);
        if (known != joints_.end()) return known->second;
        const gltf::Skin& from = gltf::at(source_.document.skins, index);
        FloatTable inverse;
        if (from.inverseBindMatrices != gltf::kNone)
            inverse = readFloats(source_, from.inverseBindMatrices, 16, 16);
        JointPose pose;
        std::size_t mirrored = 0;
        for (std::size_t j = 0; j < from.joints.size(); ++j) {
            M44d bind;  // whose last column is 0, 0, 0, 1, whatever the file holds there
            for (int i = 0; i < 16 && j < inverse.count; ++i) {
                if (i % 4 != 3) bind[i / 4][i % 4] = static_cast<double>(inverse.at(j)[i]);
            }
            pose.toWorld.push_back(bind * toWorld(from.joints[j]));
            if (pose.toWorld.back().determinant() < 0) ++mirrored;
        }
        pose.mirrored = 2 * mirrored > pose.toWorld.size();
        return joints_.emplace(index, std::move(pose)).first->second;
    }

    void extendBounds(const Mesh& mesh, const M44d& transform) {
        for (const auto& position : mesh.positions)
            scene_.bounds.extendBy(V3d(position) * transform);
    }

    // --- cameras and lights ---

    void placeCamera(const gltf::Node& node, int index) {
        Camera camera = readCamera(source_, node.camera, toWorld(index));
        camera.name = cameraNames_.unique(nameOr(node.name, camera.name, "Camera", node.camera));
        scene_.cameras.push_back(std::move(camera));
    }

    void placeLight(const gltf::Node& node, int index) {
        Light light = readLight(source_, index, toWorld(index), scene_.warnings);
        light.name = lightNames_.unique(nameOr(light.name, node.name, "Light", node.light));
        scene_.lights.push_back(std::make_unique<const Light>(std::move(light)));
    }

    const GltfSource& source_;
    MeshStore& meshes_;
    const std::vector<NodePose>& poses_;
    Scene& scene_;
    PlacedNodes placed_;
    UniqueNames lightNames_;
    UniqueNames cameraNames_;
    std::map<std::pair<const PrimitiveGeometry*, std::vector<double>>, std::shared_ptr<const Mesh>>
        morphed_;
    std::map<int, JointPose> joints_;
    std::size_t bent_ = 0;  // vertices and triangles in bent copies
};

}  // namespace

void GltfPoser::pose(const std::vector<NodePose>& nodes, Scene& scene) {
    Posing(source_, meshes_, nodes, scene).run();
}

}  // namespace tavora::studio
