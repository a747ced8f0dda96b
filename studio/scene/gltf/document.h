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

/// What a glTF file says, member by member, as far as it is read. Names and
/// meanings are those of glTF 2.0 and its extensions; what a member starts with
/// here is what the format names for an absent one.
namespace tavora::studio::gltf {

using Json = nlohmann::ordered_json;

/// In place of an index: none is given.
inline constexpr int kNone = -1;

/// Whether a member is there at all, as an object.
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

/// Of an accessor's components; may be another number in a file.
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
    int bufferView = kNone;  ///< none: zeros
    std::size_t byteOffset = 0;
    ComponentType componentType{};
    std::size_t count = 0;
    std::string_view type;  ///< "SCALAR", "VEC2", ..
    bool normalized = false;
    std::optional<Sparse> sparse;
};

/// Accessors of vertex data by what they hold: "POSITION", "TEXCOORD_0", ..
using Attributes = std::map<std::string, int>;

/// KHR_draco_mesh_compression: its attributes are numbers inside the compressed mesh.
struct CompressedMesh {
    int bufferView = kNone;
    Attributes attributes;
};

enum class Mode : std::uint16_t { Triangles = 4, TriangleStrip = 5, TriangleFan = 6 };

struct Primitive {
    Attributes attributes;
    int indices = kNone;
    int material = kNone;
    Mode mode = Mode::Triangles;  ///< may be another number in a file
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
    double aspectRatio = 0;  ///< 0: that of the picture
};

struct Orthographic {
    double xmag = 0;
    double ymag = 0;
};

/// That of the two is there which its type names.
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
    double range = 0;           ///< metres; 0: without end
    double innerConeAngle = 0;  ///< radians, as the next
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
    SamplerFilter magFilter{};  ///< 0: none is named, for both
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

/// A use without which the material still is itself: what is wrong with it in
/// the file is told here, and is no fault of the file.
struct SpareTexture {
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
    SpareTexture shadeMultiplyTexture;
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

/// Of avatars of version 0, VRM: colours as a display shows them.
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
    std::optional<double> metallicFactor;  ///< none counts as 1
    double roughnessFactor = 1;
    Given metallicRoughnessTexture;
    Given occlusionTexture;
    SpareTexture normalTexture;
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

/// What a channel moves; Other is something that is not known.
enum class TargetPath { Other, Translation, Rotation, Scale, Weights, Pointer };

/// A JSON pointer, taken apart at its slashes and unescaped.
struct Pointer {
    std::vector<std::string> tokens;
};

struct AnimationTarget {
    int node = kNone;
    TargetPath path = TargetPath::Other;
    std::optional<Pointer> pointer;  ///< KHR_animation_pointer; with TargetPath::Pointer always
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

/// Every index in it is kNone or that of something in the list it points into.
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
    std::vector<ToonOfVersion0> avatarMaterials;  ///< empty, or one a material
    std::vector<Animation> animations;
};

/// What must be known of a file before the rest of it means anything.
struct Preamble {
    std::string_view version;
    std::vector<std::string_view> extensionsRequired;
};

/// The scene that is shown; null where the file has none and all nodes are.
inline const Scene* shownScene(const Document& document) {
    const std::size_t index =
        document.scene == kNone ? 0 : static_cast<std::size_t>(document.scene);
    return index < document.scenes.size() ? &document.scenes[index] : nullptr;
}

/// What is ours in `extras`, which may be null: their member "tavora", or null.
inline const Json& ownExtras(const Json* extras) {
    static const Json none;
    return extras == nullptr ? none : member(*extras, "tavora");
}

/// `list[index]`, for an index that a document holds.
template <class T>
const T& at(const std::vector<T>& list, int index) {
    return list[static_cast<std::size_t>(index)];
}

}  // namespace tavora::studio::gltf
