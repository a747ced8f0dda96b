#pragma once

#include <string>

#include "studio/scene/gltf/document.h"

namespace tavora::studio::gltf {

/// Reads the document `json` in time proportional to its length. Throws Error
/// "PATH: LOCATION is VALUE but must be ..", with a location like nodes[3].mesh, for a
/// member of a wrong type or range, an index out of range, and a missing member. A member
/// that is null counts as absent. The result points into `json`. `path` is the file's name
/// in messages.
Document readDocument(const Json& json, const std::string& path);

/// The same for the members of Preamble alone.
Preamble readPreamble(const Json& json, const std::string& path);

}  // namespace tavora::studio::gltf
