#pragma once

#include <cstddef>
#include <optional>

/// The list of temporary files that a signal handler removes. It has fixed memory and no locks, so
/// that the handler can read it at any time.
namespace tavora::studio {

/// Adds an absolute path to the list and returns its slot. Empty when the list is full or the path
/// too long; after a signal such a file is not removed. Any thread.
std::optional<std::size_t> listUnfinished(const char* path) noexcept;

/// Removes a slot from the list, if there is one. Any thread.
void unlistUnfinished(std::optional<std::size_t> slot) noexcept;

}  // namespace tavora::studio
