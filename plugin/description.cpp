#include "plugin/description.h"

#include <algorithm>
#include <iterator>

#include "host/handler.h"
#include "plugin/record/shader_instance.h"

namespace tavora {

const char* DescLn(HostInstance instance) {
    static constexpr char line[] = "Tavora v1.1";
    auto* record = static_cast<ShaderInstance*>(instance);
    std::copy(std::begin(line), std::end(line), record->description);
    return record->description;
}

unsigned int Flags(HostInstance instance) {
    constexpr unsigned int always = HOST_SHADER_COLOR | HOST_SHADER_LUMINOUS | HOST_SHADER_DIFFUSE |
                                    HOST_SHADER_SPECULAR | HOST_SHADER_RAYTRACE;
    const auto* record = static_cast<const ShaderInstance*>(instance);
    return record->transparencyUsed != 0 ? always | HOST_SHADER_TRANSPARENCY : always;
}

}  // namespace tavora
