#pragma once

#include <nlohmann/json.hpp>

namespace tavora::studio {

struct GltfSource;

/// Checks that every member of the document that is read has the type and range
/// it must have, and that every index points at something. Throws Error
/// that names the place, e.g. "nodes[3].mesh". The readers rely on it: what
/// passes can be looked up without more care.
void checkShape(const GltfSource& source);

}  // namespace tavora::studio
