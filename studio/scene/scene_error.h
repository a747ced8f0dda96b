#pragma once

#include <stdexcept>

namespace tavora::studio {

/// A scene, look or settings file that cannot be used. The text is one line:
/// what is wrong, where, and what to do about it.
class SceneError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavora::studio
