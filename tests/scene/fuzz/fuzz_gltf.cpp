// Any bytes as a scene file: read into data the renderer can rely on, or
// refused in one line.
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
#include "tests/scene/sound_scene.h"

using namespace tavora::studio;

namespace {

void require(bool holds) {
    if (!holds) std::abort();
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
        require(faultOf(readGltf(file)).empty());
    } catch (const Error& error) {
        require(std::string_view(error.what()).find('\n') == std::string_view::npos);
    }
    return 0;
}
