// Every model, and files made by hand, as ours and another reader of glTF
// understand them: what is stored, and every value of every accessor.

#include <algorithm>
#include <cstring>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <tiny_gltf.h>

#include "studio/scene/gltf/accessor.h"
#include "tests/scene/full_scene.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using Numbers = std::vector<double>;

std::string textOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The other reader refuses accessors without data, which is what indices of
/// compressed meshes have; the compressed data holds them.
std::string withoutCompressedIndices(const std::string& text) {
    Json document = Json::parse(text);
    for (Json& mesh : document["meshes"]) {
        for (Json& primitive : mesh["primitives"]) {
            if (primitive.contains("extensions")) primitive.erase("indices");
        }
    }
    return document.dump();
}

tinygltf::Model readOtherwise(const fs::path& file) {
    tinygltf::Model model;
    tinygltf::TinyGLTF loader;
    loader.SetImageLoader([](tinygltf::Image*, int, std::string*, std::string*, int, int,
                             const unsigned char*, int, void*) { return true; },
                          nullptr);
    std::string error;
    std::string warning;
    std::string text = textOf(file);
    bool read = false;
    if (file.extension() == ".glb") {
        read = loader.LoadBinaryFromFile(&model, &error, &warning, file.string());
    } else {
        if (text.find("KHR_draco") != std::string::npos) text = withoutCompressedIndices(text);
        read = loader.LoadASCIIFromString(&model, &error, &warning, text.data(),
                                          static_cast<unsigned>(text.size()),
                                          file.parent_path().string());
    }
    EXPECT_TRUE(read) << file << ": " << error;
    return model;
}

template <class Range>
Numbers numbersOf(const Range& values) {
    return {values.begin(), values.end()};
}

/// What is absent is as long as what stands for it.
Numbers orDefault(const Numbers& values, const Numbers& otherwise) {
    return values.empty() ? otherwise : values;
}

float valueAt(const unsigned char* at, int type, bool normalized) {
    const auto whole = [&](auto kind, double most) {
        std::memcpy(&kind, at, sizeof kind);
        return static_cast<float>(normalized ? std::max(kind / most, -1.0)
                                             : static_cast<double>(kind));
    };
    switch (type) {
        case TINYGLTF_COMPONENT_TYPE_BYTE:
            return whole(std::int8_t{}, 127.0);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE:
            return whole(std::uint8_t{}, 255.0);
        case TINYGLTF_COMPONENT_TYPE_SHORT:
            return whole(std::int16_t{}, 32767.0);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT:
            return whole(std::uint16_t{}, 65535.0);
        case TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT:
            return whole(std::uint32_t{}, 4294967295.0);
        default:
            float value;
            std::memcpy(&value, at, sizeof value);
            return value;
    }
}

const unsigned char* dataOf(const tinygltf::Model& model, int view, std::size_t offset) {
    const tinygltf::BufferView& from = model.bufferViews.at(static_cast<std::size_t>(view));
    return model.buffers.at(static_cast<std::size_t>(from.buffer)).data.data() + from.byteOffset +
           offset;
}

std::vector<float> valuesOf(const tinygltf::Model& model, const tinygltf::Accessor& accessor) {
    const int components = tinygltf::GetNumComponentsInType(static_cast<unsigned>(accessor.type));
    const int size =
        tinygltf::GetComponentSizeInBytes(static_cast<unsigned>(accessor.componentType));
    std::vector<float> values(accessor.count * static_cast<std::size_t>(components));
    const auto put = [&](std::size_t element, const unsigned char* from) {
        for (int c = 0; c < components; ++c) {
            values[element * static_cast<std::size_t>(components) + static_cast<std::size_t>(c)] =
                valueAt(from + c * size, accessor.componentType, accessor.normalized);
        }
    };
    if (accessor.bufferView >= 0) {
        const int stride =
            accessor.ByteStride(model.bufferViews[static_cast<std::size_t>(accessor.bufferView)]);
        const unsigned char* from = dataOf(model, accessor.bufferView, accessor.byteOffset);
        for (std::size_t i = 0; i < accessor.count; ++i)
            put(i, from + static_cast<std::ptrdiff_t>(i) * stride);
    }
    const auto& sparse = accessor.sparse;
    const int indexSize =
        sparse.isSparse
            ? tinygltf::GetComponentSizeInBytes(static_cast<unsigned>(sparse.indices.componentType))
            : 0;
    for (int i = 0; sparse.isSparse && i < sparse.count; ++i) {
        const unsigned char* index =
            dataOf(model, sparse.indices.bufferView,
                   static_cast<std::size_t>(sparse.indices.byteOffset + i * indexSize));
        const unsigned char* value =
            dataOf(model, sparse.values.bufferView,
                   static_cast<std::size_t>(sparse.values.byteOffset + i * size * components));
        put(static_cast<std::size_t>(valueAt(index, sparse.indices.componentType, false)), value);
    }
    return values;
}

void expectSame(const gltf::Node& ours, const tinygltf::Node& theirs) {
    EXPECT_EQ(ours.name, theirs.name);
    EXPECT_THAT((std::vector{ours.mesh, ours.skin, ours.camera}),
                testing::ElementsAre(theirs.mesh, theirs.skin, theirs.camera));
    EXPECT_EQ(ours.children, theirs.children);
    EXPECT_EQ(ours.weights, theirs.weights);
    EXPECT_EQ(numbersOf(ours.translation), orDefault(theirs.translation, {0, 0, 0}));
    EXPECT_EQ(numbersOf(ours.rotation), orDefault(theirs.rotation, {0, 0, 0, 1}));
    EXPECT_EQ(numbersOf(ours.scale), orDefault(theirs.scale, {1, 1, 1}));
    EXPECT_EQ(ours.matrix ? numbersOf(*ours.matrix) : Numbers(), theirs.matrix);
    const auto light = theirs.extensions.find("KHR_lights_punctual");
    EXPECT_EQ(ours.light, light == theirs.extensions.end()
                              ? gltf::kNone
                              : light->second.Get("light").GetNumberAsInt());
}

void expectSame(const gltf::Mesh& ours, const tinygltf::Mesh& theirs) {
    EXPECT_EQ(ours.name, theirs.name);
    EXPECT_EQ(ours.weights, theirs.weights);
    ASSERT_EQ(ours.primitives.size(), theirs.primitives.size());
    for (std::size_t i = 0; i < ours.primitives.size(); ++i) {
        const gltf::Primitive& mine = ours.primitives[i];
        const tinygltf::Primitive& other = theirs.primitives[i];
        EXPECT_EQ(mine.attributes, other.attributes);
        EXPECT_EQ(mine.targets, other.targets);
        EXPECT_EQ(mine.material, other.material);
        EXPECT_EQ(static_cast<int>(mine.mode), other.mode);
        if (!mine.compressed) {
            EXPECT_EQ(mine.indices, other.indices);
            continue;
        }
        const auto& extension = other.extensions.at("KHR_draco_mesh_compression");
        EXPECT_EQ(mine.compressed->bufferView, extension.Get("bufferView").GetNumberAsInt());
        for (const auto& [name, id] : mine.compressed->attributes)
            EXPECT_EQ(id, extension.Get("attributes").Get(name).GetNumberAsInt()) << name;
    }
}

void expectSame(const gltf::Skin& ours, const tinygltf::Skin& theirs) {
    EXPECT_EQ(ours.joints, theirs.joints);
    EXPECT_EQ(ours.inverseBindMatrices, theirs.inverseBindMatrices);
}

void expectSame(const gltf::Scene& ours, const tinygltf::Scene& theirs) {
    EXPECT_EQ(ours.nodes, theirs.nodes);
}

void expectSame(const gltf::Camera& ours, const tinygltf::Camera& theirs) {
    EXPECT_EQ(ours.name, theirs.name);
    if (theirs.type == "orthographic") {
        ASSERT_TRUE(ours.orthographic && ours.type == gltf::CameraType::Orthographic);
        EXPECT_EQ(ours.orthographic->xmag, theirs.orthographic.xmag);
        EXPECT_EQ(ours.orthographic->ymag, theirs.orthographic.ymag);
        return;
    }
    ASSERT_TRUE(ours.perspective && ours.type == gltf::CameraType::Perspective);
    EXPECT_EQ(ours.perspective->yfov, theirs.perspective.yfov);
    EXPECT_EQ(ours.perspective->aspectRatio, theirs.perspective.aspectRatio);
    EXPECT_EQ(ours.perspective->znear, theirs.perspective.znear);
}

void expectSame(const gltf::Light& ours, const tinygltf::Light& theirs) {
    constexpr const char* kTypes[] = {"directional", "point", "spot"};
    EXPECT_EQ(ours.name, theirs.name);
    EXPECT_EQ(kTypes[static_cast<int>(ours.type)], theirs.type);
    EXPECT_EQ(numbersOf(ours.color), orDefault(theirs.color, {1, 1, 1}));
    EXPECT_EQ(ours.intensity, theirs.intensity);
    EXPECT_EQ(ours.range, theirs.range);
    EXPECT_EQ(ours.innerConeAngle, theirs.spot.innerConeAngle);
    EXPECT_NEAR(ours.outerConeAngle, theirs.spot.outerConeAngle, 1e-9);
}

void expectSame(const gltf::Texture& ours, const tinygltf::Texture& theirs) {
    EXPECT_EQ(ours.source, theirs.source);
    EXPECT_EQ(ours.sampler, theirs.sampler);
}

void expectSame(const gltf::Material& ours, const tinygltf::Material& theirs) {
    const tinygltf::PbrMetallicRoughness& pbr = theirs.pbrMetallicRoughness;
    const auto indexOf = [](const std::optional<gltf::TextureInfo>& info) {
        return info ? info->index : gltf::kNone;
    };
    EXPECT_EQ(ours.name, theirs.name);
    EXPECT_EQ(numbersOf(ours.baseColorFactor), pbr.baseColorFactor);
    EXPECT_EQ(ours.metallicFactor.value_or(1), pbr.metallicFactor);
    EXPECT_EQ(ours.roughnessFactor, pbr.roughnessFactor);
    EXPECT_EQ(numbersOf(ours.emissiveFactor), theirs.emissiveFactor);
    EXPECT_EQ(ours.alphaCutoff, theirs.alphaCutoff);
    EXPECT_EQ(ours.doubleSided, theirs.doubleSided);
    EXPECT_EQ(indexOf(ours.baseColorTexture), pbr.baseColorTexture.index);
    EXPECT_EQ(indexOf(ours.emissiveTexture), theirs.emissiveTexture.index);
    EXPECT_EQ(indexOf(ours.normalTexture.info), theirs.normalTexture.index);
    EXPECT_EQ(ours.normalScale, theirs.normalTexture.scale);
}

void expectSame(const gltf::Animation& ours, const tinygltf::Animation& theirs) {
    constexpr const char* kPaths[] = {"", "translation", "rotation", "scale", "weights", "pointer"};
    constexpr const char* kInterpolations[] = {"LINEAR", "STEP", "CUBICSPLINE"};
    EXPECT_EQ(ours.name, theirs.name);
    ASSERT_EQ(ours.channels.size(), theirs.channels.size());
    for (std::size_t i = 0; i < ours.channels.size(); ++i) {
        EXPECT_EQ(ours.channels[i].sampler, theirs.channels[i].sampler);
        EXPECT_EQ(ours.channels[i].target.node, theirs.channels[i].target_node);
        EXPECT_EQ(kPaths[static_cast<int>(ours.channels[i].target.path)],
                  theirs.channels[i].target_path);
    }
    ASSERT_EQ(ours.samplers.size(), theirs.samplers.size());
    for (std::size_t i = 0; i < ours.samplers.size(); ++i) {
        EXPECT_EQ(ours.samplers[i].input, theirs.samplers[i].input);
        EXPECT_EQ(ours.samplers[i].output, theirs.samplers[i].output);
        EXPECT_EQ(kInterpolations[static_cast<int>(ours.samplers[i].interpolation)],
                  theirs.samplers[i].interpolation);
    }
}

template <class Ours, class Theirs>
void expectAllSame(const std::vector<Ours>& ours, const std::vector<Theirs>& theirs,
                   const char* what) {
    ASSERT_EQ(ours.size(), theirs.size()) << what;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        SCOPED_TRACE(what + std::to_string(i));
        expectSame(ours[i], theirs[i]);
    }
}

void expectReadAlike(const fs::path& file) {
    SCOPED_TRACE(file.string());
    const GltfSource source = readGltfSource(file);
    const gltf::Document& ours = source.document;
    const tinygltf::Model theirs = readOtherwise(file);
    expectAllSame(ours.nodes, theirs.nodes, "node ");
    expectAllSame(ours.meshes, theirs.meshes, "mesh ");
    expectAllSame(ours.skins, theirs.skins, "skin ");
    expectAllSame(ours.scenes, theirs.scenes, "scene ");
    expectAllSame(ours.cameras, theirs.cameras, "camera ");
    expectAllSame(ours.lights, theirs.lights, "light ");
    expectAllSame(ours.textures, theirs.textures, "texture ");
    expectAllSame(ours.materials, theirs.materials, "material ");
    expectAllSame(ours.animations, theirs.animations, "animation ");
    EXPECT_EQ(ours.scene, theirs.defaultScene);
    ASSERT_EQ(ours.accessors.size(), theirs.accessors.size());
    for (std::size_t i = 0; i < ours.accessors.size(); ++i) {
        const FloatTable table = readFloats(source, static_cast<int>(i), 1, 16);
        const std::vector<float> values = valuesOf(theirs, theirs.accessors[i]);
        EXPECT_EQ(table.count, theirs.accessors[i].count);
        EXPECT_TRUE(table.values == values) << "accessor " << i;
    }
}

TEST(GltfSecondReader, AgreesOnEveryModel) {
    const fs::path folder = TAVORA_MODELS;
    ASSERT_TRUE(is_directory(folder)) << "configure with TAVORA_MODELS, a folder with models";
    std::size_t models = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const fs::path suffix = entry.path().extension();
        if (suffix != ".glb" && suffix != ".gltf" && suffix != ".vrm") continue;
        expectReadAlike(entry.path());
        ++models;
    }
    EXPECT_GE(models, 17U);
}

/// `values` as every other two bytes of a view, for an accessor with a stride.
int stridden(GltfBuilder& file, const std::vector<std::int16_t>& values) {
    Json accessor = {{"bufferView", file.view(values)}, {"byteOffset", 2}, {"componentType", 5122}};
    file.document["bufferViews"].back()["byteStride"] = 8;
    accessor.update({{"count", values.size() / 4}, {"type", "VEC2"}, {"normalized", true}});
    return file.add("accessors", accessor);
}

/// Replaces elements 1 and `last` of six of scalars, by indices of type T.
template <class T>
void sparse(GltfBuilder& file, int base, T last) {
    const int indices = file.view(std::vector<T>{1, last});
    const int values = file.view(std::vector<float>{-8, 7.5F, -3});
    const int like = file.accessor(std::vector<T>{1}, "SCALAR");
    const Json type = file.document["accessors"][static_cast<std::size_t>(like)]["componentType"];
    Json accessor = {{"componentType", 5126}, {"count", 6}, {"type", "SCALAR"}};
    accessor["sparse"] = {{"count", 2},
                          {"indices", {{"bufferView", indices}, {"componentType", type}}},
                          {"values", {{"bufferView", values}, {"byteOffset", 4}}}};
    if (base != gltf::kNone) accessor["bufferView"] = base;
    file.add("accessors", accessor);
}

TEST(GltfSecondReader, AgreesOnFilesMadeByHand) {
    GltfBuilder file = fullScene();
    file.document.erase("buffers");
    file.document["animations"][0]["channels"].erase(2);  // which it does not know
    file.document["animations"][0]["samplers"][0]["interpolation"] = "LINEAR";
    file.accessor(std::vector<std::int8_t>{-128, 0, 1, 127}, "VEC4", true);
    file.accessor(std::vector<std::uint8_t>{0, 1, 254, 255}, "VEC2", true);
    file.accessor(std::vector<std::int16_t>{-32768, -1, 1, 32767}, "SCALAR", true);
    file.accessor(std::vector<std::uint16_t>{0, 1, 65534, 65535}, "SCALAR", true);
    file.accessor(std::vector<std::uint32_t>{0, 1, 123456}, "VEC3");
    file.accessor(std::vector<std::int8_t>{-128, -1, 127}, "VEC3");
    stridden(file, {9, -32768, 5, 9, 9, 7, 32767, 9});
    sparse<std::uint8_t>(file, gltf::kNone, 5);
    sparse<std::uint16_t>(file, file.view(std::vector<float>{6, 5, 4, 3, 2, 1}), 4);
    sparse<std::uint32_t>(file, file.view(std::vector<float>{6, 5, 4, 3, 2, 1}), 0);
    file.document["nodes"][2]["children"] = {1};
    file.document["scene"] = 0;
    file.document["cameras"][1]["orthographic"].update({{"znear", 0}, {"zfar", 9}});
    const TemporaryFolder folder;
    expectReadAlike(file.write(folder));
    expectReadAlike(file.writeBinary(folder));
}

// What the other reader does not know.
TEST(GltfSecondReader, PointersAndVisibilityAreReadToo) {
    GltfBuilder file = fullScene();
    file.document["nodes"][1]["extensions"]["KHR_node_visibility"]["visible"] = false;
    file.document["animations"][0]["channels"][2]["target"]["extensions"]["KHR_animation_pointer"]
                 ["pointer"] = "/materials/0/ex~1tr~0as/";
    const TemporaryFolder folder;
    const GltfSource source = readGltfSource(file.write(folder));
    const gltf::Document& document = source.document;
    EXPECT_TRUE(document.nodes[0].visible);
    EXPECT_FALSE(document.nodes[1].visible);
    const gltf::AnimationTarget& target = document.animations.at(0).channels.at(2).target;
    ASSERT_TRUE(target.pointer && target.path == gltf::TargetPath::Pointer);
    EXPECT_THAT(target.pointer->tokens, testing::ElementsAre("materials", "0", "ex/tr~as", ""));
}

}  // namespace
}  // namespace tavora::studio
