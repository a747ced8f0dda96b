#include "studio/scene/gltf_meshes.h"

#include <algorithm>
#include <fmt/format.h>

#include "studio/scene/gltf_accessor.h"
#include "studio/scene/gltf_draco.h"

namespace tavora::studio {
namespace {

using Imath::V2f;
using Imath::V3f;
using Imath::V4f;
using Triangle = std::array<std::uint32_t, 3>;

/// Where a primitive's vertex data comes from: accessors, or a compressed mesh.
class PrimitiveReader {
  public:
    PrimitiveReader(const GltfSource& source, const tinygltf::Primitive& primitive,
                    std::string where)
        : source_(source), primitive_(primitive), where_(std::move(where)) {
        if (isDraco(primitive)) {
            draco_ = readDraco(source, primitive, where_);
            compressed_ = true;
        }
    }

    SourcePrimitive read() {
        SourcePrimitive result;
        result.material = primitive_.material;
        readVertices(result.mesh);
        readTriangles(result.mesh);
        readInfluences(result);
        for (const auto& target : primitive_.targets)
            result.targets.push_back(readTarget(target));
        return result;
    }

  private:
    bool has(const std::string& name) const {
        return draco_.attributes.count(name) != 0 || primitive_.attributes.count(name) != 0;
    }

    FloatTable table(const std::string& name, int least, int most) {
        const auto compressed = draco_.attributes.find(name);
        FloatTable values = compressed != draco_.attributes.end()
                                ? compressed->second
                                : readFloats(source_, primitive_.attributes.at(name), least, most);
        const bool fits = values.components >= least && values.components <= most;
        if (!fits || (vertices_ != 0 && values.count != vertices_)) {
            source_.fail(fmt::format("{}: {} does not fit its positions: export the file again",
                                     where_, name));
        }
        return values;
    }

    void readVertices(Mesh& mesh) {
        if (!has("POSITION")) source_.fail(where_ + ": has no positions: export the file again");
        const FloatTable positions = table("POSITION", 3, 3);
        vertices_ = positions.count;
        mesh.positions = vectors(positions);
        if (has("NORMAL")) {
            mesh.normals = vectors(table("NORMAL", 3, 3));
            for (V3f& n : mesh.normals)
                n.normalize();
        }
        for (std::size_t set = 0; set < mesh.uvs.size(); ++set)
            readUvs(set, mesh);
        if (has("COLOR_0")) readColors(mesh);
    }

    static std::vector<V3f> vectors(const FloatTable& values) {
        std::vector<V3f> result(values.count);
        for (std::size_t i = 0; i < values.count; ++i) {
            const float* v = values.at(i);
            result[i] = V3f(v[0], v[1], v[2]);
        }
        return result;
    }

    void readUvs(std::size_t set, Mesh& mesh) {
        const std::string name = fmt::format("TEXCOORD_{}", set);
        if (!has(name)) return;
        const FloatTable values = table(name, 2, 2);
        mesh.uvs[set].resize(values.count);
        for (std::size_t i = 0; i < values.count; ++i)
            mesh.uvs[set][i] = V2f(values.at(i)[0], values.at(i)[1]);
    }

    void readColors(Mesh& mesh) {
        const FloatTable values = table("COLOR_0", 3, 4);
        mesh.colors.resize(values.count);
        for (std::size_t i = 0; i < values.count; ++i) {
            const float* v = values.at(i);
            mesh.colors[i] = V4f(v[0], v[1], v[2], values.components == 4 ? v[3] : 1.0F);
        }
    }

    void readTriangles(Mesh& mesh) {
        std::vector<std::uint32_t> order;
        if (compressed_) {
            order = draco_.indices;
        } else if (primitive_.indices >= 0) {
            order = readIntegers(source_, primitive_.indices, 1);
        } else {
            order.resize(vertices_);
            for (std::size_t i = 0; i < vertices_; ++i)
                order[i] = static_cast<std::uint32_t>(i);
        }
        const auto beyond = std::find_if(order.begin(), order.end(),
                                         [this](std::uint32_t i) { return i >= vertices_; });
        if (beyond != order.end()) {
            source_.fail(fmt::format("{}: uses vertex {} of {}: export the file again", where_,
                                     *beyond, vertices_));
        }
        mesh.triangles = trianglesOf(order);
    }

    std::vector<Triangle> trianglesOf(const std::vector<std::uint32_t>& order) const {
        std::vector<Triangle> triangles;
        const std::size_t count = order.size();
        const bool list =
            compressed_ || primitive_.mode == TINYGLTF_MODE_TRIANGLES || primitive_.mode < 0;
        if (list) {
            triangles.reserve(count / 3);
            for (std::size_t i = 0; i + 2 < count; i += 3)
                triangles.push_back({order[i], order[i + 1], order[i + 2]});
            return triangles;
        }
        const bool fan = primitive_.mode == TINYGLTF_MODE_TRIANGLE_FAN;
        for (std::size_t i = 0; i + 2 < count; ++i) {
            const Triangle strip = i % 2 == 0 ? Triangle{order[i], order[i + 1], order[i + 2]}
                                              : Triangle{order[i], order[i + 2], order[i + 1]};
            const Triangle t = fan ? Triangle{order[i + 1], order[i + 2], order[0]} : strip;
            if (t[0] != t[1] && t[1] != t[2] && t[2] != t[0]) triangles.push_back(t);
        }
        return triangles;
    }

    void readInfluences(SourcePrimitive& result) {
        readSet("JOINTS_0", "WEIGHTS_0", result.joints, result.weights);
        readSet("JOINTS_1", "WEIGHTS_1", result.joints1, result.weights1);
    }

    void readSet(const char* jointName, const char* weightName,
                 std::vector<std::array<std::uint32_t, 4>>& joints, std::vector<V4f>& weights) {
        if (!has(jointName) || !has(weightName)) return;
        const FloatTable numbers = table(jointName, 4, 4);
        const FloatTable shares = table(weightName, 4, 4);
        joints.resize(numbers.count);
        weights.resize(numbers.count);
        for (std::size_t i = 0; i < numbers.count; ++i) {
            for (std::size_t k = 0; k < 4; ++k) {
                joints[i][k] =
                    static_cast<std::uint32_t>(std::clamp(numbers.at(i)[k], 0.0F, 65535.0F));
                weights[i][static_cast<int>(k)] = std::max(shares.at(i)[k], 0.0F);
            }
        }
    }

    SourcePrimitive::Target readTarget(const std::map<std::string, int>& attributes) {
        SourcePrimitive::Target target;
        const auto displacements = [&](const char* name) -> std::vector<V3f> {
            const auto found = attributes.find(name);
            if (found == attributes.end()) return {};
            const FloatTable values = readFloats(source_, found->second, 3, 3);
            if (values.count != vertices_)
                source_.fail(where_ + ": a morph target does not fit: export the file again");
            return vectors(values);
        };
        target.positions = displacements("POSITION");
        target.normals = displacements("NORMAL");
        return target;
    }

    const GltfSource& source_;
    const tinygltf::Primitive& primitive_;
    std::string where_;
    DracoPrimitive draco_;
    bool compressed_ = false;
    std::size_t vertices_ = 0;
};

bool isTriangles(int mode) {
    return mode < 0 || mode == TINYGLTF_MODE_TRIANGLES || mode == TINYGLTF_MODE_TRIANGLE_STRIP ||
           mode == TINYGLTF_MODE_TRIANGLE_FAN;
}

template <typename T>
std::vector<T> unshared(const std::vector<T>& values, const std::vector<Triangle>& triangles) {
    std::vector<T> result;
    if (values.empty()) return result;
    result.reserve(triangles.size() * 3);
    for (const Triangle& t : triangles) {
        for (std::uint32_t i : t)
            result.push_back(values[i]);
    }
    return result;
}

V3f flatNormal(const V3f& a, const V3f& b, const V3f& c) {
    const Imath::V3d n = (Imath::V3d(b) - Imath::V3d(a)).cross(Imath::V3d(c) - Imath::V3d(a));
    const double length = n.length();
    return length > 0 ? V3f(n / length) : V3f(0, 1, 0);
}

}  // namespace

std::vector<SourcePrimitive> readMesh(const GltfSource& source, int index,
                                      std::vector<std::string>& warnings) {
    const tinygltf::Mesh& mesh = element(source, source.model.meshes, index, "mesh");
    std::vector<SourcePrimitive> primitives;
    for (std::size_t i = 0; i < mesh.primitives.size(); ++i) {
        const std::string where = fmt::format("mesh {} \"{}\", primitive {}", index, mesh.name, i);
        if (!isTriangles(mesh.primitives[i].mode)) {
            warnings.push_back(
                fmt::format("{}: {}: points and lines are not drawn", source.path, where));
            continue;
        }
        primitives.push_back(PrimitiveReader(source, mesh.primitives[i], where).read());
        primitives.back().mesh.name = mesh.name;
    }
    return primitives;
}

void makeFlatNormals(Mesh& mesh) {
    mesh.positions = unshared(mesh.positions, mesh.triangles);
    for (auto& uvs : mesh.uvs)
        uvs = unshared(uvs, mesh.triangles);
    mesh.colors = unshared(mesh.colors, mesh.triangles);
    mesh.normals.resize(mesh.positions.size());
    for (std::size_t t = 0; t < mesh.triangles.size(); ++t) {
        const auto first = static_cast<std::uint32_t>(3 * t);
        mesh.triangles[t] = {first, first + 1, first + 2};
        const V3f n =
            flatNormal(mesh.positions[first], mesh.positions[first + 1], mesh.positions[first + 2]);
        std::fill_n(mesh.normals.begin() + first, 3, n);
    }
}

}  // namespace tavora::studio
