#pragma once

#include <cstddef>
#include <set>
#include <string>

namespace tavora::studio {

/// Gives out names that are unique: a name that was given before gets a number.
class UniqueNames {
  public:
    /// `mostBytes`: names are cut to this length, never inside a UTF-8 character.
    explicit UniqueNames(std::size_t mostBytes = std::string::npos) : mostBytes_(mostBytes) {}

    std::string unique(const std::string& wanted);

  private:
    std::size_t mostBytes_;
    std::set<std::string> given_;
};

}  // namespace tavora::studio
