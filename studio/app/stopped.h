#pragma once

#include <stdexcept>
#include <string>

namespace tavora::studio {

/// Thrown when work ended early because a signal requested it. The text says what was done.
class Stopped : public std::runtime_error {
  public:
    /// `isResumable`: the same command can continue the work.
    explicit Stopped(const std::string& text, bool isResumable = false)
        : std::runtime_error(text), isResumable_(isResumable) {}

    bool isResumable() const { return isResumable_; }

  private:
    bool isResumable_;
};

/// Thrown when some frames of a film failed. The text says which.
class SomeFailed : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavora::studio
