#include "studio/scene/gltf_pose.h"

#include <ImathMatrixAlgo.h>
#include <ImathQuat.h>
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>

#include "studio/scene/gltf_accessor.h"
#include "studio/scene/gltf_meshes.h"
#include "studio/scene/unique_names.h"

namespace tavora::studio {
namespace {

using Imath::M44d;
using Imath::V3d;
using Imath::V3f;
using Json = nlohmann::ordered_json;

constexpr std::size_t kLongestLightName = 79;

bool finite(const M44d& m) {
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            if (!std::isfinite(m[r][c])) return false;
        }
    }
    return true;
}

M44d localTransform(const GltfSource& source, const tinygltf::Node& node, int index) {
    M44d m;
    if (node.matrix.size() == 16) {
        for (int i = 0; i < 16; ++i)
            m[i / 4][i % 4] = node.matrix[static_cast<std::size_t>(i)];
    } else {
        M44d scale;
        M44d rotation;
        if (node.scale.size() == 3)
            scale.setScale(V3d(node.scale[0], node.scale[1], node.scale[2]));
        if (node.rotation.size() == 4) {
            Imath::Quatd q(node.rotation[3], node.rotation[0], node.rotation[1], node.rotation[2]);
            rotation = q.normalized().toMatrix44();
        }
        m = scale * rotation;
        if (node.translation.size() == 3) {
            for (int i = 0; i < 3; ++i)
                m[3][i] = node.translation[static_cast<std::size_t>(i)];
        }
    }
    if (!finite(m))
        source.fail(fmt::format(
            "node {} is placed by values that are not numbers: repair the model", index));
    return m;
}

/// A rotation and translation without the scale of `m`.
M44d rigid(const M44d& m) {
    V3d axes[3];
    for (int r = 0; r < 3; ++r)
        axes[r] = V3d(m[r][0], m[r][1], m[r][2]);
    V3d z = axes[2].length2() > 0 ? axes[2].normalized() : V3d(0, 0, 1);
    V3d x = axes[1].cross(z);
    x = x.length2() > 0 ? x.normalized() : V3d(1, 0, 0);
    const V3d y = z.cross(x);
    return M44d(x.x, x.y, x.z, 0, y.x, y.y, y.z, 0, z.x, z.y, z.z, 0, m[3][0], m[3][1], m[3][2], 1);
}

/// Poses the nodes of one file.
class Poser {
  public:
    Poser(const GltfSource& source, Scene& scene)
        : source_(source), scene_(scene), lightNames_(kLongestLightName) {}

    void pose() {
        const std::vector<int> roots = rootNodes();
        walk(roots);
        for (int node : order_)
            place(node);
        if (scene_.objects.empty()) {
            scene_.warnings.push_back(source_.path + ": has nothing to draw");
        }
    }

  private:
    std::vector<int> rootNodes() const {
        const auto& scenes = source_.model.scenes;
        if (!scenes.empty()) {
            return element(source_, scenes, std::max(source_.model.defaultScene, 0), "scene").nodes;
        }
        std::vector<bool> child(source_.model.nodes.size(), false);
        for (const tinygltf::Node& node : source_.model.nodes) {
            for (int c : node.children) {
                if (c >= 0 && static_cast<std::size_t>(c) < child.size())
                    child[static_cast<std::size_t>(c)] = true;
            }
        }
        std::vector<int> roots;
        for (std::size_t i = 0; i < child.size(); ++i) {
            if (!child[i]) roots.push_back(static_cast<int>(i));
        }
        return roots;
    }

    /// Parents before children, each node once; without recursion, so that a
    /// chain of any length will do.
    void walk(const std::vector<int>& roots) {
        world_.resize(source_.model.nodes.size());
        std::vector<bool> seen(source_.model.nodes.size(), false);
        struct Step {
            int node;
            M44d parent;
        };
        std::vector<Step> todo;
        for (auto root = roots.rbegin(); root != roots.rend(); ++root)
            todo.push_back({*root, M44d()});
        while (!todo.empty()) {
            const Step step = todo.back();
            todo.pop_back();
            const tinygltf::Node& node = element(source_, source_.model.nodes, step.node, "node");
            const auto at = static_cast<std::size_t>(step.node);
            if (seen[at]) {
                source_.fail(fmt::format(
                    "node {} \"{}\" has two parents or is its own: repair the node tree", step.node,
                    node.name));
            }
            seen[at] = true;
            world_[at] = localTransform(source_, node, step.node) * step.parent;
            if (!finite(world_[at]))
                source_.fail(
                    fmt::format("node {} lies beyond all numbers: repair the model", step.node));
            order_.push_back(step.node);
            for (auto c = node.children.rbegin(); c != node.children.rend(); ++c)
                todo.push_back({*c, world_[at]});
        }
    }

    void place(int index) {
        const tinygltf::Node& node = source_.model.nodes[static_cast<std::size_t>(index)];
        if (node.mesh >= 0) placeMesh(node, index);
        if (node.camera >= 0) placeCamera(node, index);
        const auto light = node.extensions.find("KHR_lights_punctual");
        if (light != node.extensions.end() && light->second.Has("light")) {
            placeLight(light->second.Get("light").GetNumberAsInt(), index);
        }
    }

    // --- meshes ---

    const std::vector<SourcePrimitive>& primitivesOf(int mesh) {
        auto found = meshes_.find(mesh);
        if (found == meshes_.end()) {
            found = meshes_.emplace(mesh, readMesh(source_, mesh, scene_.warnings)).first;
        }
        return found->second;
    }

    void placeMesh(const tinygltf::Node& node, int index) {
        auto object = std::make_unique<Object>();
        object->name = node.name.empty() ? fmt::format("Object {}", index) : node.name;
        const bool skinned = node.skin >= 0;
        if (!skinned) object->objectToWorld = world_[static_cast<std::size_t>(index)];
        object->mirrored = object->objectToWorld.determinant() < 0;
        const std::vector<double> weights = weightsOf(node);
        std::int32_t polygons = 0;
        const std::vector<SourcePrimitive>& primitives = primitivesOf(node.mesh);
        for (std::size_t i = 0; i < primitives.size(); ++i) {
            Part part;
            part.mesh = posedMesh(node, primitives[i], i, weights);
            part.surface = surfaceOf(primitives[i].material);
            part.firstPolygon = polygons;
            polygons += static_cast<std::int32_t>(part.mesh->triangles.size());
            if (part.mesh->triangles.empty()) continue;
            extendBounds(*part.mesh, object->objectToWorld);
            object->parts.push_back(std::move(part));
        }
        if (!object->parts.empty()) scene_.objects.push_back(std::move(object));
    }

    int surfaceOf(int material) {
        const int plain = static_cast<int>(scene_.surfaces.size()) - 1;
        if (material < 0) return plain;
        element(source_, source_.model.materials, material, "material");
        return material;
    }

    std::vector<double> weightsOf(const tinygltf::Node& node) const {
        if (!node.weights.empty()) return node.weights;
        return element(source_, source_.model.meshes, node.mesh, "mesh").weights;
    }

    /// Shared between nodes unless the node bends it.
    std::shared_ptr<const Mesh> posedMesh(const tinygltf::Node& node,
                                          const SourcePrimitive& primitive, std::size_t number,
                                          const std::vector<double>& weights) {
        const bool bent = node.skin >= 0 || !node.weights.empty();
        const auto key = std::make_pair(node.mesh, number);
        if (!bent) {
            const auto known = posed_.find(key);
            if (known != posed_.end()) return known->second;
        }
        auto mesh = std::make_shared<Mesh>(primitive.mesh);
        morph(primitive, weights, *mesh);
        if (node.skin >= 0) skin(node.skin, primitive, *mesh);
        mesh->smooth = !mesh->normals.empty();
        if (mesh->normals.empty()) makeFlatNormals(*mesh);
        for (V3f& n : mesh->normals) {
            if (!(n.length2() > 0)) n = V3f(0, 1, 0);
            n.normalize();
        }
        if (!bent) posed_[key] = mesh;
        return mesh;
    }

    static void morph(const SourcePrimitive& primitive, const std::vector<double>& weights,
                      Mesh& mesh) {
        for (std::size_t t = 0; t < primitive.targets.size() && t < weights.size(); ++t) {
            const auto w = static_cast<float>(weights[t]);
            if (w == 0 || !std::isfinite(w)) continue;
            const SourcePrimitive::Target& target = primitive.targets[t];
            for (std::size_t i = 0; i < target.positions.size(); ++i)
                mesh.positions[i] += target.positions[i] * w;
            if (mesh.normals.empty()) continue;
            for (std::size_t i = 0; i < target.normals.size(); ++i)
                mesh.normals[i] += target.normals[i] * w;
        }
    }

    const std::vector<M44d>& jointsOf(int index) {
        const auto known = joints_.find(index);
        if (known != joints_.end()) return known->second;
        const tinygltf::Skin& skin = element(source_, source_.model.skins, index, "skin");
        std::vector<M44d> matrices;
        FloatTable inverse;
        if (skin.inverseBindMatrices >= 0)
            inverse = readFloats(source_, skin.inverseBindMatrices, 16, 16);
        for (std::size_t j = 0; j < skin.joints.size(); ++j) {
            element(source_, source_.model.nodes, skin.joints[j], "joint node");
            M44d bind;
            if (j < inverse.count) {
                for (int i = 0; i < 16; ++i)
                    bind[i / 4][i % 4] = static_cast<double>(inverse.at(j)[i]);
            }
            matrices.push_back(bind * world_[static_cast<std::size_t>(skin.joints[j])]);
        }
        return joints_.emplace(index, std::move(matrices)).first->second;
    }

    void skin(int index, const SourcePrimitive& primitive, Mesh& mesh) {
        const std::vector<M44d>& joints = jointsOf(index);
        for (std::size_t v = 0; v < mesh.positions.size(); ++v) {
            M44d blend = M44d() * 0.0;
            double total = 0;
            const auto add = [&](const std::vector<std::array<std::uint32_t, 4>>& numbers,
                                 const std::vector<Imath::V4f>& weights) {
                for (std::size_t k = 0; v < numbers.size() && k < 4; ++k) {
                    const auto w = static_cast<double>(weights[v][static_cast<int>(k)]);
                    if (!(w > 0)) continue;
                    blend += element(source_, joints, static_cast<int>(numbers[v][k]), "joint") * w;
                    total += w;
                }
            };
            add(primitive.joints, primitive.weights);
            add(primitive.joints1, primitive.weights1);
            if (!(total > 0)) continue;
            blend *= 1.0 / total;
            mesh.positions[v] = V3f(V3d(mesh.positions[v]) * blend);
            if (!mesh.normals.empty()) mesh.normals[v] = V3f(turned(V3d(mesh.normals[v]), blend));
        }
    }

    /// A normal by the inverse transpose of `m`.
    static V3d turned(const V3d& normal, const M44d& m) {
        M44d linear = m;
        for (int i = 0; i < 3; ++i)
            linear[3][i] = 0;
        V3d result;
        linear.inverse().transposed().multDirMatrix(normal, result);
        return result.length2() > 0 ? result.normalized() : normal;
    }

    void extendBounds(const Mesh& mesh, const M44d& toWorld) {
        for (const auto& triangle : mesh.triangles) {
            for (std::uint32_t i : triangle)
                scene_.bounds.extendBy(V3d(mesh.positions[i]) * toWorld);
        }
    }

    // --- cameras and lights ---

    void placeCamera(const tinygltf::Node& node, int index) {
        const tinygltf::Camera& from =
            element(source_, source_.model.cameras, node.camera, "camera");
        Camera camera;
        const std::string name = !node.name.empty() ? node.name : from.name;
        camera.name =
            cameraNames_.unique(name.empty() ? fmt::format("Camera {}", node.camera) : name);
        camera.cameraToWorld = rigid(world_[static_cast<std::size_t>(index)]);
        camera.orthographic = from.type == "orthographic";
        if (camera.orthographic) {
            camera.halfHeight = from.orthographic.ymag;
            camera.aspect =
                from.orthographic.ymag > 0 ? from.orthographic.xmag / from.orthographic.ymag : 0;
        } else {
            camera.verticalFov = from.perspective.yfov;
            camera.aspect = from.perspective.aspectRatio;
        }
        const bool sane = camera.orthographic
                              ? camera.halfHeight > 0 && std::isfinite(camera.halfHeight)
                              : camera.verticalFov > 0 && camera.verticalFov < 3.14;
        if (!sane)
            source_.fail(
                fmt::format("camera \"{}\" has no usable field of view: repair it", camera.name));
        scene_.cameras.push_back(camera);
    }

    void placeLight(int index, int node) {
        const tinygltf::Light& from = element(source_, source_.model.lights, index, "light");
        const std::string nodeName = source_.model.nodes[static_cast<std::size_t>(node)].name;
        Light light;
        const std::string name = !from.name.empty() ? from.name : nodeName;
        light.name = lightNames_.unique(name.empty() ? fmt::format("Light {}", index) : name);
        if (from.type == "point") light.kind = LightKind::Point;
        if (from.type == "spot") light.kind = LightKind::Spot;
        const M44d frame = rigid(world_[static_cast<std::size_t>(node)]);
        light.position = frame.translation();
        frame.multDirMatrix(V3d(0, 0, -1), light.direction);
        for (std::size_t i = 0; i < from.color.size() && i < 3; ++i)
            light.color[static_cast<int>(i)] = static_cast<float>(from.color[i]);
        light.intensity = static_cast<float>(from.intensity);
        if (from.range > 0) light.range = static_cast<float>(from.range);
        light.innerCone = static_cast<float>(from.spot.innerConeAngle);
        light.outerCone = static_cast<float>(from.spot.outerConeAngle);
        const bool sane = std::isfinite(light.intensity) && std::isfinite(light.color.length2());
        if (!sane)
            source_.fail(
                fmt::format("light \"{}\" has values that are not numbers: repair it", light.name));
        scene_.lights.push_back(std::make_unique<const Light>(light));
    }

    const GltfSource& source_;
    Scene& scene_;
    UniqueNames lightNames_;
    UniqueNames cameraNames_;
    std::vector<M44d> world_;  // per node
    std::vector<int> order_;
    std::map<int, std::vector<SourcePrimitive>> meshes_;
    std::map<std::pair<int, std::size_t>, std::shared_ptr<const Mesh>> posed_;
    std::map<int, std::vector<M44d>> joints_;
};

}  // namespace

void poseAtRest(const GltfSource& source, Scene& scene) {
    Poser(source, scene).pose();
}

}  // namespace tavora::studio
