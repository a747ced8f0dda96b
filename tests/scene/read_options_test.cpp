// What reading a scene may take and where it may look: memory is counted before it is
// taken, what several parts name is read once, links lead nowhere unasked.

#include <filesystem>
#include <gmock/gmock.h>
#include <png.h>

#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using testing::AllOf;
using testing::HasSubstr;
namespace fs = std::filesystem;

constexpr std::uint64_t kMega = 1 << 20;

std::string refusedWith(const fs::path& file, const ReadOptions& options) {
    return refusal([&] { readGltf(file, options); });
}

/// A picture of 4 MB in a few kilobytes.
void putLargePng(const fs::path& file) {
    constexpr unsigned kSide = 1024;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_GRAY;
    image.width = image.height = kSide;
    const std::vector<std::uint8_t> black(std::size_t{kSide} * kSide);
    ASSERT_NE(png_image_write_to_file(&image, file.c_str(), 0, black.data(), 0, nullptr), 0);
}

GltfBuilder texturedWith(int images) {
    GltfBuilder file;
    file.triangle();
    for (int i = 0; i < images; ++i) {
        file.add("images", {{"uri", "large.png"}});
        file.add("textures", {{"source", i}});
        file.add("materials", {{"pbrMetallicRoughness", {{"baseColorTexture", {{"index", i}}}}}});
    }
    return file;
}

TEST(ReadOptions, AnImageNamedOftenIsReadAndDecodedOnceAndCounted) {
    const TemporaryFolder folder;
    putLargePng(folder / "large.png");
    const fs::path file = texturedWith(50).write(folder);
    const Scene scene = readGltf(file, {.memory = 5 * kMega});
    EXPECT_EQ(scene.images.size(), 1U);
    EXPECT_GE(scene.memory->taken(), 4 * kMega);
    EXPECT_LT(scene.memory->taken(), 4 * kMega + 200'000);  // materials; the file is gone
    EXPECT_THAT(
        refusedWith(file, {.memory = 4 * kMega}),
        AllOf(HasSubstr("the texture \"large.png\" takes more memory"), HasSubstr("--max-memory")));
}

TEST(ReadOptions, BuffersOfOneFileAreOneAndEachLargePartIsCountedFirst) {
    const TemporaryFolder folder;
    GltfBuilder file;
    file.triangle();
    file.bytes.resize(kMega);
    for (int i = 0; i < 50; ++i)
        file.add("buffers",
                 {{"uri", i % 2 == 0 ? "scene.bin" : "./scene.bin"}, {"byteLength", kMega}});
    EXPECT_EQ(refusedWith(file.write(folder), {.memory = kMega + kMega / 2}), "");
    EXPECT_THAT(refusedWith(file.write(folder), {.memory = kMega}),
                HasSubstr("scene.gltf: with the file \"scene.bin\" takes more than the 1 MB"));

    // One triangle a hundred thousand times, in a megabyte of indices.
    file = {};
    const int corners = file.accessor(GltfBuilder::corners(), "VEC3");
    std::vector<std::uint32_t> order(300'000);
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<std::uint32_t>(i % 3);
    file.mesh({{"POSITION", corners}}, {{"indices", file.accessor(order, "SCALAR")}});
    file.root({{"mesh", 0}});
    const std::uint64_t plain = file.read().memory->taken();
    EXPECT_GT(plain, 300'000U * (12 + 12 + 4));
    EXPECT_THAT(refusedWith(file.write(folder), {.memory = 2 * kMega}),
                HasSubstr("with mesh 0 \"\", primitive 0 takes more"));
    EXPECT_THAT(refusedWith(file.write(folder), {.memory = 10 * kMega}),
                HasSubstr("with mesh 0 \"\", primitive 0 takes more"));
    file.primitive()["targets"][0]["POSITION"] = corners;
    const std::uint64_t morphable = file.read().memory->taken();
    EXPECT_EQ(morphable - plain, 300'000U * 12);
    for (const double weight : {0.2, 0.4, 0.6})
        file.root({{"mesh", 0}, {"weights", Json::array({weight})}});
    EXPECT_EQ(file.read().memory->taken() - morphable, 3U * (300'000 * (12 + 12 + 4) + 512));
    EXPECT_THAT(refusedWith(file.write(folder), {.memory = morphable + 20 * kMega}),
                HasSubstr("with the bent mesh of node 3 takes more"));
    // The structure of a document is larger than its text.
    file = {};
    for (int i = 0; i < 40'000; ++i)
        file.add("nodes", Json::object());
    EXPECT_THAT(refusedWith(file.write(folder), {.memory = 4 * kMega}),
                HasSubstr("with its JSON takes more than the 4 MB"));
}

TEST(ReadOptions, FilesElsewhereAreReadWhereAskedForAlone) {
    const TemporaryFolder folder;
    fs::create_directories(folder / "scene");
    GltfBuilder file;
    file.triangle();
    putBytes(folder / "other.bin", file.bytes);
    fs::create_symlink(folder / "other.bin", folder / "scene" / "link.bin");
    fs::create_symlink(folder / "scene", folder / "door");
    putBytes(folder / "scene" / "own.bin", file.bytes);
    fs::create_symlink("own.bin", folder / "scene" / "inside.bin");
    for (const auto& [uri, outside] : {std::pair{"link.bin", true},
                                       {"../other.bin", true},
                                       {"../scene/own.bin", true},
                                       {"inside.bin", false},
                                       {"own.bin", false}}) {
        file.document["buffers"] = Json::array({{{"uri", uri}, {"byteLength", file.bytes.size()}}});
        putBytes(folder / "scene" / "a.gltf", file.document.dump());
        for (const char* way : {"scene", "door"}) {
            const fs::path scene = folder / way / "a.gltf";
            EXPECT_EQ(refusedWith(scene, {.outside = true}), "") << uri;
            const std::string line = refusedWith(scene, {});
            EXPECT_EQ(line.find("let it be read with --allow-outside") != line.npos, outside)
                << uri << line;
            EXPECT_EQ(line.empty(), !outside) << uri;
        }
    }
}

}  // namespace
}  // namespace tavora::studio
