#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "studio/scene/surface_shader.h"

namespace tavora::studio {

/// Stores shaders, by index of the material, in the `extras` of a glTF file's materials and
/// writes the result to `output`. All other text of the JSON is unchanged, and binary chunks
/// are copied. Relative URIs do not change either, so a file that refers to other files may
/// only be written to the same folder. `output` may be `input`; it is replaced as a whole or
/// not at all, and must have the suffix of the input (.gltf or .glb). "-" is standard output,
/// for an input that refers to no other file.
/// Throws Error: Fault::Scene when the input cannot be read or the result not be written
/// there, Fault::Output when writing fails; and ReaderGone, see standard_streams.h.
void writeGltfSettings(const std::filesystem::path& input, const std::filesystem::path& output,
                       const std::map<int, SurfaceShader>& shaders);

}  // namespace tavora::studio
