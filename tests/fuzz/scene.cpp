// Any bytes as a scene file: read into data the renderer can rely on, or refused.
#include "studio/scene/gltf/reader.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/scene/sound_scene.h"

using namespace tavora::studio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto file = inputFile({reinterpret_cast<const char*>(data), size}, ".gltf");
    readOrRefuse([&] { require(faultOf(readGltf(file)).empty()); });
    return 0;
}
