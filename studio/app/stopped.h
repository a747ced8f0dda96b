#pragma once

#include <stdexcept>

namespace tavora::studio {

/// A signal ended the work in good order. The text says what became of it.
class Stopped : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavora::studio
