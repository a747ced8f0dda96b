#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "studio/scene/animation/curve.h"
#include "studio/util/json_members.h"

/// The members of a glTF document, as far as they are read. Names and meanings are those of
/// glTF 2.0 and its extensions; initial values are the format's defaults for absent members.
namespace tavora::studio::gltf {

using Json = nlohmann::ordered_json;

/// The value of an absent index.
inline constexpr int kNone = -1;

/// Whether a member is present, as an object, whose contents are not read.
struct Given {
    bool given = false;
    explicit operator bool() const { return given; }
};

/// The names of an object's members, in the file's order.
struct MemberNames {
    std::vector<std::string_view> names;
};

struct Buffer {
    std::size_t byteLength = 0;
    std::string_view uri;
};

struct BufferView {
    int buffer = kNone;
    std::size_t byteOffset = 0;
    std::size_t byteLength = 0;
    std::size_t byteStride = 0;  ///< 0: tightly packed
};

/// The type of an accessor's components; a file may have other numbers.
enum class ComponentType : std::uint16_t {
    Byte = 5120,
    UnsignedByte = 5121,
    Short = 5122,
    UnsignedShort = 5123,
    UnsignedInt = 5125,
    Float = 5126
};

struct SparseIndices {
    int bufferView = kNone;
    std::size_t byteOffset = 0;
    ComponentType componentType{};
};

struct SparseValues {
    int bufferView = kNone;
    std::size_t byteOffset = 0;
};

struct Sparse {
    std::size_t count = 0;
    SparseIndices indices;
    SparseValues values;
};

struct Accessor {
    int bufferView = kNone;  ///< kNone: all elements are zeros
    std::size_t byteOffset = 0;
    ComponentType componentType{};
    std::size_t count = 0;
    std::string_view type;  ///< "SCALAR", "VEC2", ..
    bool normalized = false;
    std::optional<Sparse> sparse;
};

/// Accessors of vertex data by their meaning: "POSITION", "TEXCOORD_0", ..
using Attributes = std::map<std::string, int>;

/// KHR_draco_mesh_compression. Its attributes are identifiers in the compressed mesh.
struct CompressedMesh {
    int bufferView = kNone;
    Attributes attributes;
};

enum class Mode : std::uint16_t { Triangles = 4, TriangleStrip = 5, TriangleFan = 6 };

struct Primitive {
    Attributes attributes;
    int indices = kNone;
    int material = kNone;
    Mode mode = Mode::Triangles;  ///< a file may have other numbers
    std::vector<Attributes> targets;
    std::optional<CompressedMesh> compressed;
};

struct Mesh {
    std::string name;
    std::vector<Primitive> primitives;
    std::vector<double> weights;
};

struct Node {
    std::string name;
    int mesh = kNone;
    int skin = kNone;
    int camera = kNone;
    int light = kNone;  ///< KHR_lights_punctual
    std::vector<int> children;
    std::optional<std::array<double, 16>> matrix;  ///< in place of the three below
    std::array<double, 3> translation{0, 0, 0};
    std::array<double, 4> rotation{0, 0, 0, 1};
    std::array<double, 3> scale{1, 1, 1};
    std::vector<double> weights;
    bool visible = true;  ///< KHR_node_visibility
    const Json* extras = nullptr;
};

struct Scene {
    std::vector<int> nodes;
    const Json* extras = nullptr;
};

struct Skin {
    std::vector<int> joints;
    int inverseBindMatrices = kNone;
};

enum class CameraType { Perspective, Orthographic };

struct Perspective {
    double yfov = 0;  ///< radians
    double znear = 0;
    double aspectRatio = 0;  ///< 0: the picture's
};

struct Orthographic {
    double xmag = 0;
    double ymag = 0;
};

/// The projection that `type` names is always present.
struct Camera {
    std::string name;
    CameraType type = CameraType::Perspective;
    std::optional<Perspective> perspective;
    std::optional<Orthographic> orthographic;
};

enum class LightType { Directional, Point, Spot };

/// KHR_lights_punctual
struct Light {
    std::string name;
    LightType type = LightType::Directional;
    std::array<double, 3> color{1, 1, 1};
    double intensity = 1;       ///< lux for directional lights, candela for others
    double range = 0;           ///< metres; 0: infinite
    double innerConeAngle = 0;  ///< radians, from the axis, like the next
    double outerConeAngle = 0.78539816339744828;
    const Json* extras = nullptr;
};

struct Image {
    int bufferView = kNone;
    std::string_view uri;
    std::string name;
};

enum class SamplerFilter : std::uint16_t {
    Nearest = 9728,
    Linear = 9729,
    NearestMipmapNearest = 9984,
    LinearMipmapNearest = 9985,
    NearestMipmapLinear = 9986,
    LinearMipmapLinear = 9987
};

enum class SamplerWrap : std::uint16_t {
    ClampToEdge = 33071,
    MirroredRepeat = 33648,
    Repeat = 10497
};

struct Sampler {
    SamplerFilter magFilter{};  ///< 0: not given; the same for minFilter
    SamplerFilter minFilter{};
    SamplerWrap wrapS = SamplerWrap::Repeat;
    SamplerWrap wrapT = SamplerWrap::Repeat;
};

struct Texture {
    int source = kNone;
    int webp = kNone;  ///< EXT_texture_webp
    int sampler = kNone;
    MemberNames extensions;

    int image() const { return webp != kNone ? webp : source; }
    bool hasImage() const { return image() != kNone; }
};

/// How a material uses a texture; with KHR_texture_transform.
struct TextureInfo {
    int index = kNone;
    int texCoord = 0;
    std::array<double, 2> offset{0, 0};
    double rotation = 0;
    std::array<double, 2> scale{1, 1};
};

/// A texture without which the material can still be drawn. An error in it does not make the
/// file unreadable; it is described in `problem`.
struct OptionalTexture {
    std::optional<TextureInfo> info;
    std::string problem;
};

enum class AlphaMode { Opaque, Mask, Blend };

/// KHR_materials_pbrSpecularGlossiness
struct SpecularGlossiness {
    std::array<double, 4> diffuseFactor{1, 1, 1, 1};
    std::optional<TextureInfo> diffuseTexture;
    double glossinessFactor = 1;
    Given specularGlossinessTexture;
};

/// KHR_materials_transmission, KHR_materials_diffuse_transmission
struct Transmission {
    double factor = 0;
    std::optional<TextureInfo> texture;
};

/// VRMC_materials_mtoon
struct Toon {
    std::array<double, 3> shadeColorFactor{0, 0, 0};
    OptionalTexture shadeMultiplyTexture;
    double shadingShiftFactor = 0;
    double shadingToonyFactor = 0.9;
    Given shadingShiftTexture;
    Given matcapTexture;
    std::array<double, 3> parametricRimColorFactor{0, 0, 0};
    std::string_view outlineWidthMode = "none";
    double scrollXSpeed = 0;
    double scrollYSpeed = 0;
    double rotationSpeed = 0;
};

/// The material of an avatar of version 0, in the file's extension VRM. Colours are
/// sRGB-encoded.
struct ToonOfVersion0 {
    std::string_view shader;
    double shadeShift = 0;
    double shadeToony = 0.9;
    std::array<double, 4> shadeColor{0.97, 0.81, 0.86, 1};
    int shadeTexture = kNone;
};

struct Material {
    std::string name;
    AlphaMode alphaMode = AlphaMode::Opaque;
    double alphaCutoff = 0.5;
    bool doubleSided = false;
    std::array<double, 4> baseColorFactor{1, 1, 1, 1};
    std::optional<TextureInfo> baseColorTexture;
    std::optional<double> metallicFactor;  ///< empty: 1
    double roughnessFactor = 1;
    Given metallicRoughnessTexture;
    Given occlusionTexture;
    OptionalTexture normalTexture;
    double normalScale = 1;
    std::array<double, 3> emissiveFactor{0, 0, 0};
    double emissiveStrength = 1;  ///< KHR_materials_emissive_strength
    std::optional<TextureInfo> emissiveTexture;
    Given unlit;  ///< KHR_materials_unlit
    std::optional<SpecularGlossiness> specularGlossiness;
    std::optional<Transmission> transmission;
    std::optional<Transmission> diffuseTransmission;
    std::optional<Toon> toon;
    MemberNames extensions;
    const Json* extras = nullptr;
};

struct AnimationSampler {
    int input = kNone;   ///< key times, seconds
    int output = kNone;  ///< values; three a key for cubic splines
    Interpolation interpolation = Interpolation::Linear;
};

/// The property that a channel animates; Other is one with an unknown name.
enum class TargetPath { Other, Translation, Rotation, Scale, Weights, Pointer };

/// A JSON pointer, split at its slashes and unescaped.
struct Pointer {
    std::vector<std::string> tokens;
};

struct AnimationTarget {
    int node = kNone;
    TargetPath path = TargetPath::Other;
    std::optional<Pointer> pointer;  ///< KHR_animation_pointer; present for TargetPath::Pointer
};

struct AnimationChannel {
    int sampler = kNone;  ///< of the same animation
    AnimationTarget target;
};

struct Animation {
    std::string name;
    std::vector<AnimationChannel> channels;
    std::vector<AnimationSampler> samplers;
};

/// The document of a file. Every index in it is kNone or valid in the list that it points
/// into.
struct Document {
    std::vector<std::string_view> extensionsUsed;
    std::vector<Buffer> buffers;
    std::vector<BufferView> bufferViews;
    std::vector<Accessor> accessors;
    std::vector<Mesh> meshes;
    std::vector<Node> nodes;
    std::vector<Scene> scenes;
    int scene = kNone;
    std::vector<Skin> skins;
    std::vector<Camera> cameras;
    std::vector<Light> lights;
    std::vector<Image> images;
    std::vector<Sampler> samplers;
    std::vector<Texture> textures;
    std::vector<Material> materials;
    std::vector<ToonOfVersion0> avatarMaterials;  ///< empty, or one for each material
    std::vector<Animation> animations;
};

/// The members that decide whether the rest of the document can be read.
struct Preamble {
    std::string_view version;
    std::vector<std::string_view> extensionsRequired;
};

/// The scene that is shown; null when the file has none, and all its nodes are shown.
inline const Scene* shownScene(const Document& document) {
    const std::size_t index =
        document.scene == kNone ? 0 : static_cast<std::size_t>(document.scene);
    return index < document.scenes.size() ? &document.scenes[index] : nullptr;
}

/// The member "tavora" of `extras`, which may be null; a JSON null when there is none.
inline const Json& ownExtras(const Json* extras) {
    static const Json none;
    return extras == nullptr ? none : member(*extras, "tavora");
}

/// `list[index]`, for an index in a document, which is valid and not kNone.
template <class T>
const T& at(const std::vector<T>& list, int index) {
    return list[static_cast<std::size_t>(index)];
}

}  // namespace tavora::studio::gltf
