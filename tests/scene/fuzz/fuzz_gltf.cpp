// Any bytes as a scene file: read into data the renderer can rely on, or
// refused in one line.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

#include "studio/scene/gltf/reader.h"
#include "studio/util/error.h"

using namespace tavora::studio;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void checkMesh(const Mesh& mesh) {
    require(mesh.normals.size() == mesh.positions.size());
    require(mesh.colors.empty() || mesh.colors.size() == mesh.positions.size());
    for (const auto& uvs : mesh.uvs)
        require(uvs.empty() || uvs.size() == mesh.positions.size());
    for (const auto& triangle : mesh.triangles) {
        for (std::uint32_t i : triangle)
            require(i < mesh.positions.size());
    }
    for (const Imath::V3f& n : mesh.normals)
        require(std::abs(n.length() - 1) < 1e-3F);
}

void check(const Scene& scene) {
    for (const auto& object : scene.objects) {
        for (const Part& part : object->parts) {
            require(part.surface >= 0 &&
                    static_cast<std::size_t>(part.surface) < scene.surfaces.size());
            checkMesh(*part.mesh);
        }
    }
    for (const Camera& camera : scene.cameras)
        require(std::isfinite(camera.cameraToWorld[0][0]));
    for (const auto& light : scene.lights)
        require(light->name.size() <= 79 && std::abs(light->direction.length() - 1) < 1e-3);
}

/// A file of this process, in memory where there is such a folder.
std::filesystem::path inputFile() {
    const std::filesystem::path memory = "/dev/shm";
    const std::filesystem::path folder =
        std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    return folder / ("tavora-fuzz-" + std::to_string(::getpid()) + ".gltf");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::filesystem::path file = inputFile();
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    try {
        check(readGltf(file));
    } catch (const Error& error) {
        require(std::string_view(error.what()).find('\n') == std::string_view::npos);
    }
    return 0;
}
