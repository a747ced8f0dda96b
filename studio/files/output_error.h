#pragma once

#include <stdexcept>

namespace tavora::studio {

/// A file that could not be written whole. Nothing is left of it, and a file
/// that stood there before is untouched. The text is one line: what, where,
/// what to do.
class OutputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavora::studio
