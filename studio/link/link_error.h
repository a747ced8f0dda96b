#pragma once

#include <stdexcept>

namespace tavora::studio {

/// A plug-in module that cannot be used. The text is one line: what is wrong,
/// with which file, and what to do about it.
class LinkError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavora::studio
