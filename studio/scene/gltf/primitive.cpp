#include "studio/scene/gltf/primitive.h"

#include <algorithm>
#include <fmt/format.h>

#include "studio/scene/gltf/accessor.h"
#include "studio/scene/gltf/draco.h"
#include "studio/scene/gltf/vertex_picks.h"
#include "studio/scene/mesh/normals.h"
#include "studio/scene/mesh/tangents.h"

namespace tavora::studio {
namespace {

using Imath::V2f;
using Imath::V3f;
using Imath::V4f;

constexpr std::size_t kMaxCorners = std::size_t{1} << 30;  // of one primitive

std::vector<Triangle> trianglesOfList(const std::vector<std::uint32_t>& corners) {
    std::vector<Triangle> triangles;
    triangles.reserve(corners.size() / 3);
    for (std::size_t i = 0; i + 2 < corners.size(); i += 3)
        triangles.push_back({corners[i], corners[i + 1], corners[i + 2]});
    return triangles;
}

/// The triangles of a strip or fan, without those that repeat a vertex: these only connect
/// parts of a strip.
std::vector<Triangle> trianglesOfStrip(const std::vector<std::uint32_t>& corners, bool fan) {
    std::vector<Triangle> triangles;
    for (std::size_t i = 0; i + 2 < corners.size(); ++i) {
        const Triangle strip = i % 2 == 0 ? Triangle{corners[i], corners[i + 1], corners[i + 2]}
                                          : Triangle{corners[i], corners[i + 2], corners[i + 1]};
        const Triangle t = fan ? Triangle{corners[i + 1], corners[i + 2], corners[0]} : strip;
        if (t[0] != t[1] && t[1] != t[2] && t[2] != t[0]) triangles.push_back(t);
    }
    return triangles;
}

std::vector<V3f> vectors(const FloatTable& values) {
    std::vector<V3f> result(values.count);
    for (std::size_t i = 0; i < values.count; ++i) {
        const float* v = values.at(i);
        result[i] = V3f(v[0], v[1], v[2]);
    }
    return result;
}

std::vector<V4f> fourVectors(const FloatTable& values) {
    std::vector<V4f> result(values.count);
    for (std::size_t i = 0; i < values.count; ++i) {
        const float* v = values.at(i);
        result[i] = V4f(v[0], v[1], v[2], v[3]);
    }
    return result;
}

/// Reads a primitive's vertex data from accessors, or from a compressed mesh.
class PrimitiveReader {
  public:
    PrimitiveReader(const GltfSource& source, const gltf::Primitive& primitive,
                    const MaterialNeeds& needs, const std::string& where)
        : source_(source), primitive_(primitive), needs_(needs), where_(where) {
        if (primitive.compressed) draco_ = readDraco(source, primitive, where_, scratch_);
    }

    PrimitiveGeometry read() {
        if (!has("POSITION")) fail("has no positions");
        PrimitiveGeometry result;
        Mesh& mesh = result.mesh;
        vertices_ = count("POSITION");
        mesh.triangles = readTriangles();
        result.flat = !has("NORMAL");
        picks_ = result.flat ? VertexPicks::corners(vertices_, mesh.triangles)
                             : VertexPicks::used(vertices_, mesh.triangles);
        source_.memory->take(sizeOfMesh(mesh.triangles.size()), where_);
        readVertices(mesh);
        if (needs_.normalTexture) readTangents(*needs_.normalTexture, result);
        result.influences = {readInfluences("JOINTS_0", "WEIGHTS_0"),
                             readInfluences("JOINTS_1", "WEIGHTS_1")};
        for (const auto& target : primitive_.targets)
            result.targets.push_back(readTarget(target));
        return result;
    }

  private:
    [[noreturn]] void fail(const std::string& what) const {
        source_.fail(where_ + ": " + what + ": export the file again");
    }

    bool has(const std::string& name) const {
        return draco_.attributes.count(name) != 0 || primitive_.attributes.count(name) != 0;
    }

    /// The bytes of the mesh, and of the largest table that is needed to read an attribute.
    std::uint64_t sizeOfMesh(std::size_t triangles) const {
        std::uint64_t vertex = 2 * sizeof(V3f) + sizeof(V4f);
        for (const auto& [name, index] : primitive_.attributes) {
            if (name.starts_with("TEXCOORD")) vertex += sizeof(V2f);
            if (name.starts_with("COLOR") || name.starts_with("JOINTS") ||
                name.starts_with("WEIGHTS")) {
                vertex += sizeof(V4f);
            }
        }
        for (const gltf::Attributes& target : primitive_.targets)
            vertex += target.size() * sizeof(V3f);
        const std::size_t tangents = needs_.normalTexture ? sizeof(CornerTangents) : 0;
        return picks_.size() * vertex + triangles * (sizeof(Triangle) + tangents);
    }

    std::size_t count(const std::string& name) const {
        const auto compressed = draco_.attributes.find(name);
        return compressed != draco_.attributes.end()
                   ? compressed->second.count
                   : elementCount(source_, primitive_.attributes.at(name));
    }

    /// The picked elements of an attribute.
    FloatTable table(const std::string& name, int minComponents, int maxComponents) const {
        if (count(name) != vertices_) fail(name + " has another length than its positions");
        const auto compressed = draco_.attributes.find(name);
        if (compressed == draco_.attributes.end()) {
            return readFloats(source_, primitive_.attributes.at(name), minComponents, maxComponents,
                              &picks_);
        }
        const int components = compressed->second.components;
        if (components < minComponents || components > maxComponents)
            fail(name + " is of another type");
        return picked(compressed->second, picks_);
    }

    std::vector<Triangle> readTriangles() {
        const std::vector<std::uint32_t> corners = readCorners();
        const auto beyond = std::find_if(corners.begin(), corners.end(),
                                         [this](std::uint32_t i) { return i >= vertices_; });
        if (beyond != corners.end()) {
            fail(fmt::format("uses vertex {} of {}", *beyond, vertices_));
        }
        // A decoded mesh is a list of triangles, whatever the primitive's mode is.
        const bool list = primitive_.compressed || primitive_.mode == gltf::Mode::Triangles;
        return list ? trianglesOfList(corners)
                    : trianglesOfStrip(corners, primitive_.mode == gltf::Mode::TriangleFan);
    }

    std::vector<std::uint32_t> readCorners() {
        // The corners, the triangles, and the search for the vertices that they use.
        constexpr std::uint64_t kCornerBytes = 3 * sizeof(std::uint32_t) + sizeof(Triangle);
        if (primitive_.compressed) {
            scratch_.take(draco_.indices.size() * kCornerBytes, where_);
            return draco_.indices;
        }
        if (primitive_.indices != gltf::kNone) {
            checkCount(source_, primitive_.indices);
            scratch_.take(elementCount(source_, primitive_.indices) * kCornerBytes, where_);
            return readIntegers(source_, primitive_.indices);
        }
        checkCount(source_, primitive_.attributes.at("POSITION"));
        if (vertices_ > kMaxCorners) fail("has more vertices than can be drawn");
        scratch_.take(vertices_ * kCornerBytes, where_);
        std::vector<std::uint32_t> corners(vertices_);
        for (std::size_t i = 0; i < vertices_; ++i)
            corners[i] = static_cast<std::uint32_t>(i);
        return corners;
    }

    void readVertices(Mesh& mesh) const {
        mesh.positions = vectors(table("POSITION", 3, 3));
        for (std::size_t set = 0; set < mesh.uvs.size(); ++set)
            mesh.uvs[set] = readUvs(set);
        if (needs_.colors && has("COLOR_0")) mesh.colors = readColors();
        if (!has("NORMAL")) {
            makeFlatNormals(mesh);
            return;
        }
        mesh.normals = vectors(table("NORMAL", 3, 3));
        repairNormals(mesh);
        mesh.smooth = isSmooth(mesh);
    }

    /// Tangents in a file are used only together with its normals, to which they belong.
    void readTangents(const TextureUse& normalTexture, PrimitiveGeometry& result) const {
        Mesh& mesh = result.mesh;
        if (mesh.uvs[static_cast<std::size_t>(normalTexture.uvSet)].empty()) return;
        if (has("NORMAL") && has("TANGENT")) {
            mesh.tangents = tangentsOfVertices(mesh, fourVectors(table("TANGENT", 4, 4)));
        } else {
            mesh.tangents = makeTangents(mesh, normalTexture);
            result.tangentsMadeFor = normalTexture;
        }
    }

    std::vector<V2f> readUvs(std::size_t set) const {
        const std::string name = fmt::format("TEXCOORD_{}", set);
        if (!has(name)) return {};
        const FloatTable values = table(name, 2, 2);
        std::vector<V2f> uvs(values.count);
        for (std::size_t i = 0; i < values.count; ++i)
            uvs[i] = V2f(values.at(i)[0], values.at(i)[1]);
        return uvs;
    }

    std::vector<V4f> readColors() const {
        const FloatTable values = table("COLOR_0", 3, 4);
        std::vector<V4f> colors(values.count);
        for (std::size_t i = 0; i < values.count; ++i) {
            const float* v = values.at(i);
            colors[i] = V4f(v[0], v[1], v[2], values.components == 4 ? v[3] : 1.0F);
        }
        return colors;
    }

    Influences readInfluences(const char* jointName, const char* weightName) const {
        Influences result;
        if (!has(jointName) || !has(weightName)) return result;
        const FloatTable joints = table(jointName, 4, 4);
        const FloatTable weights = table(weightName, 4, 4);
        result.joints.resize(joints.count);
        result.weights.resize(joints.count);
        for (std::size_t i = 0; i < joints.count; ++i) {
            for (std::size_t k = 0; k < 4; ++k) {
                result.joints[i][k] =
                    static_cast<std::uint32_t>(std::clamp(joints.at(i)[k], 0.0F, 65535.0F));
                result.weights[i][static_cast<int>(k)] = std::max(weights.at(i)[k], 0.0F);
            }
        }
        return result;
    }

    MorphTarget readTarget(const gltf::Attributes& attributes) const {
        const auto displacements = [&](const char* name) -> std::vector<V3f> {
            const auto found = attributes.find(name);
            if (found == attributes.end()) return {};
            if (elementCount(source_, found->second) != vertices_) {
                fail("a morph target has another length than its positions");
            }
            return vectors(readFloats(source_, found->second, 3, 3, &picks_));
        };
        MorphTarget target{displacements("POSITION"), displacements("NORMAL"), {}};
        if (needs_.normalTexture) target.tangents = displacements("TANGENT");
        return target;
    }

    const GltfSource& source_;
    const gltf::Primitive& primitive_;
    const MaterialNeeds& needs_;
    const std::string& where_;
    MemoryShare scratch_{source_.memory};  // for memory that is freed after reading
    DracoPrimitive draco_;
    std::size_t vertices_ = 0;
    VertexPicks picks_{0};
};

}  // namespace

PrimitiveGeometry readPrimitive(const GltfSource& source, const gltf::Primitive& primitive,
                                const MaterialNeeds& needs, const std::string& where) {
    return PrimitiveReader(source, primitive, needs, where).read();
}

}  // namespace tavora::studio
