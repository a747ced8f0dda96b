#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "studio/scene/surface_shader.h"

namespace tavora::studio {

/// Stores shaders in the `extras` of the materials of a glTF file, by index of
/// the material, and writes the result to `output`. The JSON keeps its order
/// and everything else in it, binary chunks are copied; relative URIs stay as
/// they are, so a .gltf written to another folder needs its files beside it
/// (that case is an error unless the folder is the same or nothing is relative).
/// `output` may be `input`; it is replaced whole or not at all, and its suffix
/// (.gltf or .glb) must be that of the input. "-" is standard output, for an
/// input that refers to no other file.
/// Throws Error, Fault::Scene, when the input cannot be read, Fault::Output when the output
/// cannot be written, ReaderGone.
void writeGltfSettings(const std::filesystem::path& input, const std::filesystem::path& output,
                       const std::map<int, SurfaceShader>& shaders);

}  // namespace tavora::studio
