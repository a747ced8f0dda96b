#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavora::studio {

/// The end of an error message about a name that is not among `known`: the
/// nearest names ("; did you mean edgeCoverage?"), else all of them when they
/// are few ("; there are: Body, Glass"), else nothing.
std::string nearestNames(std::string_view name, std::span<const std::string> known);

}  // namespace tavora::studio
