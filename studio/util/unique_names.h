#pragma once

#include <cstddef>
#include <set>
#include <string>

namespace tavora::studio {

/// Makes names unique: a name that was used before gets a number.
class UniqueNames {
  public:
    /// Names are cut to `maxBytes`, without cutting a UTF-8 character.
    explicit UniqueNames(std::size_t maxBytes = std::string::npos) : maxBytes_(maxBytes) {}

    /// `wanted`, or a variant of it that was not returned before.
    std::string unique(const std::string& wanted);

  private:
    std::size_t maxBytes_;
    std::set<std::string> given_;
};

}  // namespace tavora::studio
