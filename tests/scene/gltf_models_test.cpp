// Every model, down to every value of its accessors, as ours and another reader read it.

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include "studio/scene/gltf/accessor.h"
#include "tests/scene/gltf_builder.h"
#include "tests/scene/sound_scene.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// The other reader refuses accessors without data, which is what indices of
/// compressed meshes have; the compressed data holds them.
std::string withoutCompressedIndices(const std::string& text) {
    Json document = Json::parse(text);
    for (Json& mesh : document["meshes"]) {
        for (Json& primitive : mesh["primitives"]) {
            const Json extensions = primitive.value("extensions", Json::object());
            if (extensions.contains("KHR_draco_mesh_compression")) primitive.erase("indices");
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
    std::string error, warning;
    const bool binary = file.extension() == ".glb";
    const std::string text = binary ? "" : withoutCompressedIndices(bytesOf(file));
    EXPECT_TRUE(binary ? loader.LoadBinaryFromFile(&model, &error, &warning, file)
                       : loader.LoadASCIIFromString(&model, &error, &warning, text.data(),
                                                    static_cast<unsigned>(text.size()),
                                                    file.parent_path()))
        << error;
    return model;
}

float valueAt(const unsigned char* at, int type, bool normalized) {
    const auto as = [&](auto value, double most) {
        std::memcpy(&value, at, sizeof value);
        const auto plain = static_cast<double>(value);
        return static_cast<float>(normalized ? std::max(plain / most, -1.0) : plain);
    };
    if (type == TINYGLTF_COMPONENT_TYPE_BYTE) return as(std::int8_t{}, 127);
    if (type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE) return as(std::uint8_t{}, 255);
    if (type == TINYGLTF_COMPONENT_TYPE_SHORT) return as(std::int16_t{}, 32767);
    if (type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT) return as(std::uint16_t{}, 65535);
    if (type == TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT) return as(std::uint32_t{}, 4294967295);
    return as(float{}, 1);
}

template <class Number>
std::size_t n(Number number) {
    return static_cast<std::size_t>(number);
}

std::size_t sizeOf(int componentType) {
    return n(tinygltf::GetComponentSizeInBytes(static_cast<unsigned>(componentType)));
}

std::vector<float> valuesOf(const tinygltf::Model& model, const tinygltf::Accessor& accessor) {
    const auto type = static_cast<unsigned>(accessor.type);
    const std::size_t components = n(tinygltf::GetNumComponentsInType(type));
    const std::size_t size = sizeOf(accessor.componentType);
    std::vector<float> values(accessor.count * components);
    const auto put = [&](std::size_t element, const unsigned char* from) {
        for (std::size_t c = 0; c < components; ++c)
            values[element * components + c] =
                valueAt(from + c * size, accessor.componentType, accessor.normalized);
    };
    const auto dataOf = [&](int view, std::size_t offset) {
        const tinygltf::BufferView& from = gltf::at(model.bufferViews, view);
        return gltf::at(model.buffers, from.buffer).data.data() + from.byteOffset + offset;
    };
    for (std::size_t i = 0; accessor.bufferView >= 0 && i < accessor.count; ++i) {
        const int stride = accessor.ByteStride(gltf::at(model.bufferViews, accessor.bufferView));
        put(i, dataOf(accessor.bufferView, accessor.byteOffset + i * n(stride)));
    }
    const auto& [count, isSparse, at, replacements] = accessor.sparse;
    for (std::size_t i = 0; isSparse && i < n(count); ++i) {
        const std::size_t offset = n(at.byteOffset) + i * sizeOf(at.componentType);
        const float index = valueAt(dataOf(at.bufferView, offset), at.componentType, false);
        put(n(index),
            dataOf(replacements.bufferView, n(replacements.byteOffset) + i * size * components));
    }
    return values;
}

/// Expects what is stored, or what stands for it where it is absent.
template <class Ours>
void expectNumbers(const Ours& ours, const std::vector<double>& theirs,
                   const std::vector<double>& otherwise) {
    EXPECT_THAT(ours, testing::ElementsAreArray(theirs.empty() ? otherwise : theirs));
}

void expectSame(const gltf::Node& ours, const tinygltf::Node& theirs) {
    EXPECT_EQ(ours.name, theirs.name);
    EXPECT_THAT((std::array{ours.mesh, ours.skin, ours.camera}),
                ElementsAre(theirs.mesh, theirs.skin, theirs.camera));
    EXPECT_EQ(ours.children, theirs.children);
    EXPECT_EQ(ours.weights, theirs.weights);
    expectNumbers(ours.translation, theirs.translation, {0, 0, 0});
    expectNumbers(ours.rotation, theirs.rotation, {0, 0, 0, 1});
    expectNumbers(ours.scale, theirs.scale, {1, 1, 1});
    EXPECT_EQ(ours.matrix.has_value(), !theirs.matrix.empty());
    if (ours.matrix) expectNumbers(*ours.matrix, theirs.matrix, {});
    const auto light = theirs.extensions.find("KHR_lights_punctual");
    const bool isLit = light != theirs.extensions.end();
    EXPECT_EQ(ours.light, isLit ? light->second.Get("light").GetNumberAsInt() : gltf::kNone);
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
        EXPECT_THAT((std::array{mine.material, static_cast<int>(mine.mode)}),
                    ElementsAre(other.material, other.mode));
        EXPECT_TRUE(mine.compressed || mine.indices == other.indices);
    }
}

template <class Ours, class Theirs>
void expectAllSame(const Ours& ours, const Theirs& theirs, const char* what) {
    ASSERT_EQ(ours.size(), theirs.size()) << what;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        SCOPED_TRACE(what + std::to_string(i));
        expectSame(ours[i], theirs[i]);
    }
}

void expectReadAlike(const fs::path& file) {
    const GltfSource source = readGltfSource(file);
    const gltf::Document& ours = source.document;
    const tinygltf::Model theirs = readOtherwise(file);
    expectAllSame(ours.nodes, theirs.nodes, "node ");
    expectAllSame(ours.meshes, theirs.meshes, "mesh ");
    ASSERT_EQ(ours.skins.size(), theirs.skins.size());
    for (std::size_t i = 0; i < ours.skins.size(); ++i) {
        EXPECT_EQ(ours.skins[i].joints, theirs.skins[i].joints);
        EXPECT_EQ(ours.skins[i].inverseBindMatrices, theirs.skins[i].inverseBindMatrices);
    }
    EXPECT_TRUE(ours.scene == theirs.defaultScene && ours.scenes.size() == theirs.scenes.size());
    ASSERT_EQ(ours.accessors.size(), theirs.accessors.size());
    for (std::size_t i = 0; i < ours.accessors.size(); ++i) {
        const FloatTable table = readFloats(source, static_cast<int>(i), 1, 16);
        EXPECT_EQ(table.count, theirs.accessors[i].count);
        EXPECT_TRUE(table.values == valuesOf(theirs, theirs.accessors[i])) << "accessor " << i;
    }
}

TEST(GltfModels, AreReadWholeAndAsTheOtherReaderReadsThem) {
    const fs::path folder = TAVORA_MODELS;
    ASSERT_TRUE(is_directory(folder)) << "configure with TAVORA_MODELS, a folder with models";
    std::array<std::size_t, 7> sums{};
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        const fs::path suffix = entry.path().extension();
        if (suffix != ".glb" && suffix != ".gltf") continue;
        SCOPED_TRACE(entry.path());
        const Scene scene = readGltf(entry.path());
        EXPECT_EQ(faultOf(scene), "");
        EXPECT_TRUE(scene.warnings.empty());
        std::size_t triangles = 0;
        for (const auto& object : scene.objects) {
            for (const Part& part : object->parts)
                triangles += part.mesh->triangles.size();
        }
        std::size_t i = 0;
        for (const std::size_t count :
             {std::size_t{1}, triangles, scene.surfaces.size(), scene.images.size(),
              scene.lights.size(), scene.cameras.size(), scene.animations.size()})
            sums[i++] += count;
        expectReadAlike(entry.path());
    }
    // By the documentation of their makers, a mesh counted for each node that uses it and
    // an image once, however often a file names it.
    EXPECT_THAT(sums, ElementsAre(17, 620935, 96, 20, 8, 2, 93));
}

TEST(GltfModels, EveryKindOfValueIsReadAlike) {
    expectReadAlike(TEST_INPUTS "/scene/every-kind-of-value.gltf");
}

// What the other reader does not know.
TEST(GltfModels, PointersAndVisibilityAreReadToo) {
    const GltfSource source = readGltfSource(TEST_INPUTS "/scene/every-part.gltf");
    EXPECT_TRUE(source.document.nodes[0].visible && !source.document.nodes[1].visible);
    const auto& pointer = source.document.animations.at(0).channels.at(2).target.pointer;
    EXPECT_THAT(pointer.value().tokens, ElementsAre("cameras", "0", "ex/tr~as", ""));
}

}  // namespace
}  // namespace tavora::studio
