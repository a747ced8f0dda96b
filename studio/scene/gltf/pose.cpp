#include "studio/scene/gltf/pose.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>

#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/lights_cameras.h"
#include "studio/scene/gltf/mesh_deformation.h"
#include "studio/scene/gltf/nodes.h"
#include "studio/scene/mesh/normals.h"
#include "studio/scene/mesh/tangents.h"
#include "studio/util/text.h"
#include "studio/util/unique_names.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;

constexpr std::size_t kMaxLightName = 79;  // bytes; modules cut longer names
// Metres from the origin, in object space and in the world. Up to there squares of distances
// are finite floats; rays do not hit geometry that is much farther away.
constexpr double kMaxDistance = 1e18;
// How many vertices and triangles deformed copies may have in addition to the stored meshes.
constexpr std::size_t kExtraValues = std::size_t{1} << 24;

std::string nameOr(const std::string& name, const std::string& second, const char* kind,
                   int index) {
    if (!name.empty()) return name;
    return !second.empty() ? second : fmt::format("{} {}", kind, index);
}

bool isWithinRange(const Imath::Box3d& box) {
    return std::max({-box.min.x, -box.min.y, -box.min.z, box.max.x, box.max.y, box.max.z}) <
           kMaxDistance;
}

/// The bytes of the mesh's arrays.
std::uint64_t memoryOf(const Mesh& mesh) {
    std::uint64_t bytes = (mesh.positions.size() + mesh.normals.size()) * sizeof(Imath::V3f) +
                          mesh.colors.size() * sizeof(Imath::V4f) +
                          mesh.triangles.size() * sizeof(mesh.triangles[0]) +
                          mesh.tangents.size() * sizeof(CornerTangents);
    for (const auto& set : mesh.uvs)
        bytes += set.size() * sizeof(Imath::V2f);
    return bytes;
}

}  // namespace

/// Makes one pose of a file's scene.
class Posing {
  public:
    Posing(GltfPoser& poser, Scene& scene)
        : poser_(poser),
          source_(poser.source_),
          scene_(scene),
          placed_(placeNodes(poser.source_)),
          lightNames_(kMaxLightName) {}

    void run() {
        scene_.objects.clear();
        scene_.lights.clear();
        scene_.cameras.clear();
        scene_.bounds.makeEmpty();
        for (int node : placed_.shown)
            place(node);
        if (scene_.objects.empty()) {
            scene_.warnings.push_back(oneLine(source_.path) + ": has nothing to draw");
        }
    }

  private:
    void place(int index) {
        const gltf::Node& node = gltf::at(source_.document.nodes, index);
        const bool isVisible = placed_.visible[static_cast<std::size_t>(index)];
        if (node.mesh != gltf::kNone && isVisible) placeMesh(node, index);
        if (node.camera != gltf::kNone) placeCamera(node, index);
        if (node.light != gltf::kNone) placeLight(node, index, isVisible);
    }

    const M44d& toWorld(int node) const { return placed_.toWorld[static_cast<std::size_t>(node)]; }

    // --- meshes ---

    void placeMesh(const gltf::Node& node, int index) {
        Object fresh;
        fresh.name = nameOr(node.name, "", "Object", index);
        if (node.skin < 0) {
            const auto transform = unflattened(toWorld(index));
            if (!transform) return;  // scaled to nothing
            fresh.objectToWorld = *transform;
            fresh.mirrored = transform->determinant() < 0;
        } else {
            fresh.mirrored = jointsOf(node.skin).mirrored;
        }
        addParts(node, index, fresh);
        if (fresh.parts.empty()) return;
        std::shared_ptr<Object>& object = poser_.objects_[index];
        if (object == nullptr) object = std::make_shared<Object>();
        *object = std::move(fresh);
        scene_.objects.push_back(object);
    }

    void addParts(const gltf::Node& node, int index, Object& object) {
        std::int32_t polygons = 0;
        for (const SourcePrimitive& primitive : poser_.meshes_.primitives(node.mesh, scene_)) {
            Part part;
            part.mesh = posedMesh(node, index, primitive.geometry);
            part.surface = surfaceOf(primitive.material);
            part.firstPolygon = polygons;
            if (part.mesh->triangles.empty()) continue;
            polygons += static_cast<std::int32_t>(part.mesh->triangles.size());
            scene_.bounds.extendBy(
                boundsOf(index, object.parts.size(), *part.mesh, object.objectToWorld));
            object.parts.push_back(std::move(part));
        }
    }

    int surfaceOf(int material) const {
        return material < 0 ? static_cast<int>(scene_.surfaces.size()) - 1 : material;
    }

    const std::vector<double>& weightsOf(const gltf::Node& node) const {
        return !node.weights.empty() ? node.weights
                                     : gltf::at(source_.document.meshes, node.mesh).weights;
    }

    /// Charges a deformed copy to the limits: a small file could need any number of them.
    void charge(const Mesh& mesh, int node) {
        source_.memory->take(memoryOf(mesh), fmt::format("the bent mesh of node {}", node));
        poser_.deformedValues_ += mesh.positions.size() + mesh.triangles.size();
        if (poser_.deformedValues_ <= poser_.meshes_.maxValues() + kExtraValues) return;
        source_.fail(
            fmt::format("node {} is one too many with a mesh of its own shape: use fewer "
                        "skinned or morphed nodes",
                        node));
    }

    /// The stored mesh when nothing deforms it, else a deformed copy. Nodes with the same
    /// morph weights share a copy.
    std::shared_ptr<const Mesh> posedMesh(
        const gltf::Node& node, int index,
        const std::shared_ptr<const PrimitiveGeometry>& geometry) {
        const std::vector<double>& weights = weightsOf(node);
        const bool morphs =
            !geometry->targets.empty() &&
            std::any_of(weights.begin(), weights.end(), [](double w) { return w != 0; });
        const bool isSkinned = node.skin >= 0;
        if (!morphs && !isSkinned) return {geometry, &geometry->mesh};
        std::shared_ptr<const Mesh>* shared =
            isSkinned ? nullptr : &morphed_[{geometry.get(), weights}];
        if (shared != nullptr && *shared != nullptr) return *shared;
        GltfPoser::DeformedMesh& deformed = poser_.deformed_[{index, geometry.get()}];
        deform(node, index, *geometry, weights, deformed);
        if (shared != nullptr) *shared = deformed.mesh;
        return deformed.mesh;
    }

    void deform(const gltf::Node& node, int index, const PrimitiveGeometry& geometry,
                const std::vector<double>& weights, GltfPoser::DeformedMesh& deformed) {
        const JointPose* joints = node.skin >= 0 ? &jointsOf(node.skin) : nullptr;
        const std::vector<M44d> none;
        const std::vector<M44d>& matrices = joints != nullptr ? joints->toWorld : none;
        if (deformed.mesh != nullptr && deformed.weights == weights && deformed.joints == matrices)
            return;
        if (deformed.mesh == nullptr) {
            charge(geometry.mesh, index);
            deformed.mesh = std::make_shared<Mesh>(geometry.mesh);
        } else {
            deformed.mesh->positions = geometry.mesh.positions;
            deformed.mesh->normals = geometry.mesh.normals;
            deformed.mesh->tangents = geometry.mesh.tangents;
        }
        Mesh& mesh = *deformed.mesh;
        mesh.revision = ++poser_.revision_;
        // An exception below must not leave a mesh that looks up to date.
        deformed.weights.clear();
        deformed.joints = {M44d() * 0.0};
        morph(geometry, weights, mesh);
        if (!geometry.flat) repairNormals(mesh);
        if (!geometry.targets.empty() && geometry.tangentsMadeFor)
            remakeTangents(geometry, weights, mesh);
        if (joints != nullptr) applySkin(node, geometry, mesh);
        if (geometry.flat) {
            makeFlatNormals(mesh);
            if (joints != nullptr && joints->mirrored) flipNormals(mesh);
        }
        checkFinite(mesh, index);
        deformed.weights = weights;
        deformed.joints = matrices;
    }

    void checkFinite(const Mesh& mesh, int node) const {
        const bool finite =
            std::all_of(mesh.positions.begin(), mesh.positions.end(),
                        [](const Imath::V3f& p) { return std::isfinite(p.x + p.y + p.z); });
        if (finite) return;
        source_.fail(
            fmt::format("node {} bends its mesh beyond all numbers: repair the model", node));
    }

    static void remakeTangents(const PrimitiveGeometry& geometry,
                               const std::vector<double>& weights, Mesh& mesh) {
        if (std::all_of(weights.begin(), weights.end(), [](double w) { return w == 0; })) return;
        if (geometry.flat) makeFlatNormals(mesh);
        mesh.tangents = makeTangents(mesh, *geometry.tangentsMadeFor);
    }

    void applySkin(const gltf::Node& node, const PrimitiveGeometry& geometry, Mesh& mesh) {
        if (skin(geometry, jointsOf(node.skin), mesh)) return;
        source_.fail(fmt::format(
            "mesh {} \"{}\" hangs on a joint that skin {} does not have: export the file again",
            node.mesh, shortened(mesh.name), node.skin));
    }

    static void flipNormals(Mesh& mesh) {
        for (Imath::V3f& n : mesh.normals)
            n = -n;
    }

    const JointPose& jointsOf(int index) {
        const auto found = joints_.find(index);
        if (found != joints_.end()) return found->second;
        const gltf::Skin& from = gltf::at(source_.document.skins, index);
        const auto [inverseBinds, isNew] = poser_.inverseBinds_.try_emplace(index);
        FloatTable& inverse = inverseBinds->second;
        if (isNew && from.inverseBindMatrices != gltf::kNone)
            inverse = readFloats(source_, from.inverseBindMatrices, 16, 16);
        JointPose pose;
        std::size_t mirrored = 0;
        for (std::size_t j = 0; j < from.joints.size(); ++j) {
            M44d bind;  // its last column is taken to be 0, 0, 0, 1, whatever the file has
            for (int i = 0; i < 16 && j < inverse.count; ++i) {
                if (i % 4 != 3) bind[i / 4][i % 4] = static_cast<double>(inverse.at(j)[i]);
            }
            pose.toWorld.push_back(bind * toWorld(from.joints[j]));
            if (pose.toWorld.back().determinant() < 0) ++mirrored;
        }
        pose.mirrored = 2 * mirrored > pose.toWorld.size();
        return joints_.emplace(index, std::move(pose)).first->second;
    }

    const Imath::Box3d& boundsOf(int node, std::size_t part, const Mesh& mesh,
                                 const M44d& transform) {
        GltfPoser::PlacedMesh& placed = poser_.placed_[{node, part}];
        if (placed.mesh == &mesh && placed.revision == mesh.revision && placed.toWorld == transform)
            return placed.bounds;
        Imath::Box3d stored, bounds;
        for (const auto& position : mesh.positions) {
            stored.extendBy(V3d(position));
            bounds.extendBy(V3d(position) * transform);
        }
        if (!isWithinRange(stored) || !isWithinRange(bounds)) {
            source_.fail(fmt::format(
                "node {} or its mesh reaches {} metres from the origin: scale the model down", node,
                kMaxDistance));
        }
        placed = {&mesh, mesh.revision, transform, bounds};
        return placed.bounds;
    }

    // --- cameras and lights ---

    void placeCamera(const gltf::Node& node, int index) {
        Camera camera = readCamera(source_, node.camera, toWorld(index));
        camera.name = cameraNames_.unique(nameOr(node.name, camera.name, "Camera", node.camera));
        scene_.cameras.push_back(std::move(camera));
    }

    /// A hidden light reserves its name too, so that names do not change when it is shown.
    void placeLight(const gltf::Node& node, int index, bool isVisible) {
        Light light = readLight(source_, index, toWorld(index), scene_.warnings);
        light.name = lightNames_.unique(nameOr(light.name, node.name, "Light", node.light));
        if (!isVisible) return;
        std::shared_ptr<Light>& shown = poser_.lights_[index];
        if (shown == nullptr) shown = std::make_shared<Light>();
        *shown = std::move(light);
        scene_.lights.push_back(shown);
    }

    GltfPoser& poser_;
    const GltfSource& source_;
    Scene& scene_;
    PlacedNodes placed_;
    UniqueNames lightNames_;
    UniqueNames cameraNames_;
    std::map<std::pair<const PrimitiveGeometry*, std::vector<double>>, std::shared_ptr<const Mesh>>
        morphed_;
    std::map<int, JointPose> joints_;
};

void GltfPoser::pose(Scene& scene) {
    Posing(*this, scene).run();
}

}  // namespace tavora::studio
