#pragma once

#include <stdexcept>

namespace tavora::studio {

/// A command line that cannot be carried out. The text is one line: what is
/// wrong and what to do.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavora::studio
