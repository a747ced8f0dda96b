#pragma once

#include <tuple>
#include <type_traits>

#include "studio/scene/gltf/document.h"

/// The rules by which a document is read. They list the members of every structure: the path
/// of the member in the file's object (with dots for objects in objects), the structure's
/// member that stores it, and the values that are allowed. The type in the file follows from
/// the type of the structure's member.
namespace tavora::studio::gltf {

/// The lists that indices point into.
enum class List {
    Buffers,
    BufferViews,
    Accessors,
    Meshes,
    Nodes,
    Scenes,
    Skins,
    Cameras,
    Lights,
    Images,
    Samplers,
    Textures,
    Materials
};

/// The paths of these lists in the document, in the order of List.
inline constexpr std::string_view kLists[] = {
    "buffers",   "bufferViews", "accessors",
    "meshes",    "nodes",       "scenes",
    "skins",     "cameras",     "extensions.KHR_lights_punctual.lights",
    "images",    "samplers",    "textures",
    "materials",
};

/// The whole numbers that a member may be: multiples of `step` from 0 to `max`, or indices
/// into a list.
struct Range {
    std::uint64_t max = 0;
    std::uint64_t step = 1;
    const char* wanted = nullptr;  ///< for messages
    std::optional<List> of;        ///< below the length of this list, in place of `max`
};

inline constexpr Range kCount{(std::uint64_t{1} << 53U) - 1, 1, "a whole number from 0", {}};
inline constexpr Range kSmall{(std::uint64_t{1} << 31U) - 1, 1, "a whole number below 2^31", {}};
inline constexpr Range kCode{65535, 1, "a whole number from 0 to 65535", {}};
inline constexpr Range kStride{252, 4, "a multiple of 4 from 0 to 252", {}};

constexpr Range in(List list) {
    return {0, 1, nullptr, list};
}

enum class Presence {
    Optional,
    Required,  ///< when its object is present
    Tolerated  ///< a wrong value counts as absent
};

template <class T, class M>
struct Rule {
    const char* path;
    M T::*member;
    Range range;
    Presence presence;
};

template <class T, class M>
constexpr Rule<T, M> rule(const char* path, M T::*member, Range range = {},
                          Presence presence = Presence::Optional) {
    return {path, member, range, presence};
}

template <class T, class M>
constexpr Rule<T, M> rule(const char* path, M T::*member, Presence presence) {
    return {path, member, {}, presence};
}

/// The rules of a structure, as a tuple.
template <class T>
inline constexpr std::tuple<> kRules{};

template <class T>
concept Structure = std::tuple_size_v<std::remove_const_t<decltype(kRules<T>)>>
!= 0;

/// The names of an enumeration in a file.
template <class T>
struct Named {
    const char* name;
    T value;
};

template <class T>
inline constexpr bool kNames = false;

/// Whether an unknown name is allowed and counts as absent.
template <class T>
inline constexpr bool kOtherNames = false;

template <>
inline constexpr Named<CameraType> kNames<CameraType>[] = {
    {"perspective", CameraType::Perspective},
    {"orthographic", CameraType::Orthographic},
};

template <>
inline constexpr Named<LightType> kNames<LightType>[] = {
    {"directional", LightType::Directional},
    {"point", LightType::Point},
    {"spot", LightType::Spot},
};

template <>
inline constexpr Named<AlphaMode> kNames<AlphaMode>[] = {
    {"OPAQUE", AlphaMode::Opaque},
    {"MASK", AlphaMode::Mask},
    {"BLEND", AlphaMode::Blend},
};
template <>
inline constexpr bool kOtherNames<AlphaMode> = true;

template <>
inline constexpr Named<Interpolation> kNames<Interpolation>[] = {
    {"LINEAR", Interpolation::Linear},
    {"STEP", Interpolation::Step},
    {"CUBICSPLINE", Interpolation::CubicSpline},
};

template <>
inline constexpr Named<TargetPath> kNames<TargetPath>[] = {
    {"translation", TargetPath::Translation},
    {"rotation", TargetPath::Rotation},
    {"scale", TargetPath::Scale},
    {"weights", TargetPath::Weights},
    {"pointer", TargetPath::Pointer},
};
template <>
inline constexpr bool kOtherNames<TargetPath> = true;

template <>
inline constexpr auto kRules<Buffer> = std::tuple{
    rule("byteLength", &Buffer::byteLength, kCount, Presence::Required),
    rule("uri", &Buffer::uri),
};

template <>
inline constexpr auto kRules<BufferView> = std::tuple{
    rule("buffer", &BufferView::buffer, in(List::Buffers), Presence::Required),
    rule("byteOffset", &BufferView::byteOffset, kCount),
    rule("byteLength", &BufferView::byteLength, kCount, Presence::Required),
    rule("byteStride", &BufferView::byteStride, kStride),
};

template <>
inline constexpr auto kRules<SparseIndices> = std::tuple{
    rule("bufferView", &SparseIndices::bufferView, in(List::BufferViews), Presence::Required),
    rule("byteOffset", &SparseIndices::byteOffset, kCount),
    rule("componentType", &SparseIndices::componentType, kCode, Presence::Required),
};

template <>
inline constexpr auto kRules<SparseValues> = std::tuple{
    rule("bufferView", &SparseValues::bufferView, in(List::BufferViews), Presence::Required),
    rule("byteOffset", &SparseValues::byteOffset, kCount),
};

template <>
inline constexpr auto kRules<Sparse> = std::tuple{
    rule("count", &Sparse::count, kCount, Presence::Required),
    rule("indices", &Sparse::indices, Presence::Required),
    rule("values", &Sparse::values, Presence::Required),
};

template <>
inline constexpr auto kRules<Accessor> = std::tuple{
    rule("bufferView", &Accessor::bufferView, in(List::BufferViews)),
    rule("byteOffset", &Accessor::byteOffset, kCount),
    rule("componentType", &Accessor::componentType, kCode, Presence::Required),
    rule("count", &Accessor::count, kCount, Presence::Required),
    rule("type", &Accessor::type, Presence::Required),
    rule("normalized", &Accessor::normalized),
    rule("sparse", &Accessor::sparse),
};

template <>
inline constexpr auto kRules<CompressedMesh> = std::tuple{
    rule("bufferView", &CompressedMesh::bufferView, in(List::BufferViews), Presence::Required),
    rule("attributes", &CompressedMesh::attributes, kCode, Presence::Required),
};

template <>
inline constexpr auto kRules<Primitive> = std::tuple{
    rule("attributes", &Primitive::attributes, in(List::Accessors), Presence::Required),
    rule("indices", &Primitive::indices, in(List::Accessors)),
    rule("material", &Primitive::material, in(List::Materials)),
    rule("mode", &Primitive::mode, kCode),
    rule("targets", &Primitive::targets, in(List::Accessors)),
    rule("extensions.KHR_draco_mesh_compression", &Primitive::compressed),
};

template <>
inline constexpr auto kRules<Mesh> = std::tuple{
    rule("name", &Mesh::name),
    rule("primitives", &Mesh::primitives, Presence::Required),
    rule("weights", &Mesh::weights),
};

template <>
inline constexpr auto kRules<Node> = std::tuple{
    rule("name", &Node::name),
    rule("mesh", &Node::mesh, in(List::Meshes)),
    rule("skin", &Node::skin, in(List::Skins)),
    rule("camera", &Node::camera, in(List::Cameras)),
    rule("extensions.KHR_lights_punctual.light", &Node::light, in(List::Lights),
         Presence::Required),
    rule("children", &Node::children, in(List::Nodes)),
    rule("matrix", &Node::matrix),
    rule("translation", &Node::translation),
    rule("rotation", &Node::rotation),
    rule("scale", &Node::scale),
    rule("weights", &Node::weights),
    rule("extensions.KHR_node_visibility.visible", &Node::visible),
    rule("extras", &Node::extras),
};

template <>
inline constexpr auto kRules<Scene> = std::tuple{
    rule("nodes", &Scene::nodes, in(List::Nodes)),
    rule("extras", &Scene::extras),
};

template <>
inline constexpr auto kRules<Skin> = std::tuple{
    rule("joints", &Skin::joints, in(List::Nodes), Presence::Required),
    rule("inverseBindMatrices", &Skin::inverseBindMatrices, in(List::Accessors)),
};

template <>
inline constexpr auto kRules<Perspective> = std::tuple{
    rule("yfov", &Perspective::yfov, Presence::Required),
    rule("znear", &Perspective::znear, Presence::Required),
    rule("aspectRatio", &Perspective::aspectRatio),
};

template <>
inline constexpr auto kRules<Orthographic> = std::tuple{
    rule("xmag", &Orthographic::xmag, Presence::Required),
    rule("ymag", &Orthographic::ymag, Presence::Required),
};

template <>
inline constexpr auto kRules<Camera> = std::tuple{
    rule("name", &Camera::name),
    rule("type", &Camera::type, Presence::Required),
    rule("perspective", &Camera::perspective),
    rule("orthographic", &Camera::orthographic),
};

template <>
inline constexpr auto kRules<Light> = std::tuple{
    rule("name", &Light::name),
    rule("type", &Light::type, Presence::Required),
    rule("color", &Light::color),
    rule("intensity", &Light::intensity),
    rule("range", &Light::range),
    rule("spot.innerConeAngle", &Light::innerConeAngle),
    rule("spot.outerConeAngle", &Light::outerConeAngle),
    rule("extras", &Light::extras),
};

template <>
inline constexpr auto kRules<Image> = std::tuple{
    rule("bufferView", &Image::bufferView, in(List::BufferViews)),
    rule("uri", &Image::uri),
    rule("name", &Image::name),
};

template <>
inline constexpr auto kRules<Sampler> = std::tuple{
    rule("magFilter", &Sampler::magFilter, kCode),
    rule("minFilter", &Sampler::minFilter, kCode),
    rule("wrapS", &Sampler::wrapS, kCode),
    rule("wrapT", &Sampler::wrapT, kCode),
};

template <>
inline constexpr auto kRules<Texture> = std::tuple{
    rule("source", &Texture::source, in(List::Images)),
    rule("extensions.EXT_texture_webp.source", &Texture::webp, in(List::Images)),
    rule("sampler", &Texture::sampler, in(List::Samplers)),
    rule("extensions", &Texture::extensions),
};

// The UV set of a texture transform overrides the one beside it.
template <>
inline constexpr auto kRules<TextureInfo> = std::tuple{
    rule("index", &TextureInfo::index, in(List::Textures), Presence::Required),
    rule("texCoord", &TextureInfo::texCoord, kSmall),
    rule("extensions.KHR_texture_transform.texCoord", &TextureInfo::texCoord, kSmall),
    rule("extensions.KHR_texture_transform.offset", &TextureInfo::offset),
    rule("extensions.KHR_texture_transform.rotation", &TextureInfo::rotation),
    rule("extensions.KHR_texture_transform.scale", &TextureInfo::scale),
};

template <>
inline constexpr auto kRules<SpecularGlossiness> = std::tuple{
    rule("diffuseFactor", &SpecularGlossiness::diffuseFactor),
    rule("diffuseTexture", &SpecularGlossiness::diffuseTexture),
    rule("glossinessFactor", &SpecularGlossiness::glossinessFactor),
    rule("specularGlossinessTexture", &SpecularGlossiness::specularGlossinessTexture),
};

// Two extensions with different names for the same members.
template <>
inline constexpr auto kRules<Transmission> = std::tuple{
    rule("transmissionFactor", &Transmission::factor),
    rule("transmissionTexture", &Transmission::texture),
    rule("diffuseTransmissionFactor", &Transmission::factor),
    rule("diffuseTransmissionTexture", &Transmission::texture),
};

template <>
inline constexpr auto kRules<Toon> = std::tuple{
    rule("shadeColorFactor", &Toon::shadeColorFactor, Presence::Tolerated),
    rule("shadeMultiplyTexture", &Toon::shadeMultiplyTexture),
    rule("shadingShiftFactor", &Toon::shadingShiftFactor, Presence::Tolerated),
    rule("shadingToonyFactor", &Toon::shadingToonyFactor, Presence::Tolerated),
    rule("shadingShiftTexture", &Toon::shadingShiftTexture),
    rule("matcapTexture", &Toon::matcapTexture),
    rule("parametricRimColorFactor", &Toon::parametricRimColorFactor, Presence::Tolerated),
    rule("outlineWidthMode", &Toon::outlineWidthMode, Presence::Tolerated),
    rule("uvAnimationScrollXSpeedFactor", &Toon::scrollXSpeed, Presence::Tolerated),
    rule("uvAnimationScrollYSpeedFactor", &Toon::scrollYSpeed, Presence::Tolerated),
    rule("uvAnimationRotationSpeedFactor", &Toon::rotationSpeed, Presence::Tolerated),
};

template <>
inline constexpr auto kRules<ToonOfVersion0> = std::tuple{
    rule("shader", &ToonOfVersion0::shader, Presence::Tolerated),
    rule("floatProperties._ShadeShift", &ToonOfVersion0::shadeShift, Presence::Tolerated),
    rule("floatProperties._ShadeToony", &ToonOfVersion0::shadeToony, Presence::Tolerated),
    rule("vectorProperties._ShadeColor", &ToonOfVersion0::shadeColor, Presence::Tolerated),
    rule("textureProperties._ShadeTexture", &ToonOfVersion0::shadeTexture, in(List::Textures),
         Presence::Tolerated),
};

template <>
inline constexpr auto kRules<Material> = std::tuple{
    rule("name", &Material::name),
    rule("alphaMode", &Material::alphaMode),
    rule("alphaCutoff", &Material::alphaCutoff),
    rule("doubleSided", &Material::doubleSided),
    rule("pbrMetallicRoughness.baseColorFactor", &Material::baseColorFactor),
    rule("pbrMetallicRoughness.baseColorTexture", &Material::baseColorTexture),
    rule("pbrMetallicRoughness.metallicFactor", &Material::metallicFactor),
    rule("pbrMetallicRoughness.roughnessFactor", &Material::roughnessFactor),
    rule("pbrMetallicRoughness.metallicRoughnessTexture", &Material::metallicRoughnessTexture),
    rule("occlusionTexture", &Material::occlusionTexture),
    rule("normalTexture", &Material::normalTexture),
    rule("normalTexture.scale", &Material::normalScale, Presence::Tolerated),
    rule("emissiveFactor", &Material::emissiveFactor),
    rule("emissiveTexture", &Material::emissiveTexture),
    rule("extensions.KHR_materials_emissive_strength.emissiveStrength",
         &Material::emissiveStrength),
    rule("extensions.KHR_materials_unlit", &Material::unlit),
    rule("extensions.KHR_materials_pbrSpecularGlossiness", &Material::specularGlossiness),
    rule("extensions.KHR_materials_transmission", &Material::transmission),
    rule("extensions.KHR_materials_diffuse_transmission", &Material::diffuseTransmission),
    rule("extensions.VRMC_materials_mtoon", &Material::toon),
    rule("extensions", &Material::extensions),
    rule("extras", &Material::extras),
};

template <>
inline constexpr auto kRules<AnimationSampler> = std::tuple{
    rule("input", &AnimationSampler::input, in(List::Accessors), Presence::Required),
    rule("output", &AnimationSampler::output, in(List::Accessors), Presence::Required),
    rule("interpolation", &AnimationSampler::interpolation),
};

template <>
inline constexpr auto kRules<AnimationTarget> = std::tuple{
    rule("node", &AnimationTarget::node, in(List::Nodes)),
    rule("path", &AnimationTarget::path, Presence::Required),
    rule("extensions.KHR_animation_pointer.pointer", &AnimationTarget::pointer, Presence::Required),
};

template <>
inline constexpr auto kRules<AnimationChannel> = std::tuple{
    rule("sampler", &AnimationChannel::sampler, kSmall, Presence::Required),
    rule("target", &AnimationChannel::target, Presence::Required),
};

template <>
inline constexpr auto kRules<Animation> = std::tuple{
    rule("name", &Animation::name),
    rule("channels", &Animation::channels, Presence::Required),
    rule("samplers", &Animation::samplers, Presence::Required),
};

template <>
inline constexpr auto kRules<Document> = std::tuple{
    rule("extensionsUsed", &Document::extensionsUsed),
    rule("buffers", &Document::buffers),
    rule("bufferViews", &Document::bufferViews),
    rule("accessors", &Document::accessors),
    rule("meshes", &Document::meshes),
    rule("nodes", &Document::nodes),
    rule("scenes", &Document::scenes),
    rule("scene", &Document::scene, in(List::Scenes)),
    rule("skins", &Document::skins),
    rule("cameras", &Document::cameras),
    rule("extensions.KHR_lights_punctual.lights", &Document::lights),
    rule("images", &Document::images),
    rule("samplers", &Document::samplers),
    rule("textures", &Document::textures),
    rule("materials", &Document::materials),
    rule("extensions.VRM.materialProperties", &Document::avatarMaterials, Presence::Tolerated),
    rule("animations", &Document::animations),
};

template <>
inline constexpr auto kRules<Preamble> = std::tuple{
    rule("asset.version", &Preamble::version, Presence::Tolerated),
    rule("extensionsRequired", &Preamble::extensionsRequired),
};

}  // namespace tavora::studio::gltf
