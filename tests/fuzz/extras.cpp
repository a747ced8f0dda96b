// Any JSON as the extras of a material: the shader in them is read or left out, and
// one that is stored there comes back as it was.
#include "studio/scene/settings/shader_extras.h"
#include "studio/util/json_text.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/scene/settings_samples.h"

using namespace tavora::studio;

namespace {

std::optional<SurfaceShader> shaderIn(const std::string& extras) {
    std::vector<std::string> warnings;
    auto shader = shaderFromExtras(parseJson(extras, "extras"), "extras", warnings);
    for (const std::string& line : warnings)
        require(line.size() < 2000 && line.find('\n') == std::string::npos);
    return shader;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    readOrRefuse([&] {
        SurfaceShader shader{"TAVO", true, sampleBlock()};
        if (const auto stored = shaderIn(text)) shader = *stored;
        const auto again = shaderIn(extrasWithShader(text, shader));
        require(again && again->server == shader.server && again->enabled == shader.enabled &&
                extrasWithShader("", *again) == extrasWithShader("", shader));
    });
    return 0;
}
