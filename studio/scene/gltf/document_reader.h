#pragma once

#include <string>

#include "studio/scene/gltf/document.h"

namespace tavora::studio::gltf {

/// Reads what the document `json` says, once and in time proportional to its
/// length. Throws Error "PATH: PLACE is VALUE but must be ..", where PLACE is like
/// nodes[3].mesh, for a member of a wrong type or range, an index that points at
/// nothing, or a member that is missing. Members that are null count as absent.
/// The result points into `json`.
Document readDocument(const Json& json, const std::string& path);

/// The same for what comes before all else.
Preamble readPreamble(const Json& json, const std::string& path);

}  // namespace tavora::studio::gltf
