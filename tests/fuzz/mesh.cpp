// Any bytes as the compressed mesh of a scene: decoded into sound geometry, or refused.
#include "studio/scene/gltf/reader.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/scene/sound_scene.h"

using namespace tavora::studio;

namespace {

// Attributes are numbered as encoders number them; what a mesh lacks is an error
// of its own, so positions alone are asked for by every other input.
std::string jsonChunk(std::size_t size) {
    const std::string more = size % 2 == 0 ? R"(,"NORMAL":1,"COLOR_0":2)" : "";
    const std::string length = std::to_string(size);
    std::string json =
        R"({"asset":{"version":"2.0"},"extensionsRequired":["KHR_draco_mesh_compression"],)"
        R"("scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],"meshes":[{"primitives":[{)"
        R"("attributes":{"POSITION":0)" +
        more + R"(},"indices":3,"extensions":{"KHR_draco_mesh_compression":{"bufferView":0,)" +
        R"("attributes":{"POSITION":0)" + more + R"(}}}}]}],"accessors":[)" +
        R"({"componentType":5126,"count":4,"type":"VEC3"},)"
        R"({"componentType":5126,"count":4,"type":"VEC3"},)"
        R"({"componentType":5121,"count":4,"type":"VEC3","normalized":true},)"
        R"({"componentType":5123,"count":4,"type":"SCALAR"}],)" +
        R"("buffers":[{"byteLength":)" + length + R"(}],"bufferViews":[{"buffer":0,"byteLength":)" +
        length + "}]}";
    json.resize((json.size() + 3) / 4 * 4, ' ');
    return json;
}

void putWord(std::string& bytes, std::size_t value) {
    for (unsigned i = 0; i < 4; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xffU);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string json = jsonChunk(size);
    std::string glb = "glTF";
    putWord(glb, 2);
    putWord(glb, 28 + json.size() + size);
    putWord(glb, json.size());
    glb += "JSON" + json;
    putWord(glb, size);
    glb += std::string("BIN\0", 4);
    glb.append(reinterpret_cast<const char*>(data), size);
    readOrRefuse([&] { require(faultOf(readGltf(inputFile(glb, ".glb"))).empty()); });
    return 0;
}
