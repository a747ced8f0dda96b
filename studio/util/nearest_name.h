#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavora::studio {

/// The end of an error message about a name that is none of `candidates`: the most similar ones
/// ("; did you mean edgeCoverage?"); if none is similar, all of them when they are few
/// ("; there are: Body, Glass"), else nothing.
std::string nearestNames(std::string_view name, std::span<const std::string> candidates);

}  // namespace tavora::studio
