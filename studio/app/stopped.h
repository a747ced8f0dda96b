#pragma once

#include <stdexcept>
#include <string>

namespace tavora::studio {

/// A signal ended the work in good order. The text says what became of it.
class Stopped : public std::runtime_error {
  public:
    /// `isResumable`: the same command can go on with it.
    explicit Stopped(const std::string& text, bool isResumable = false)
        : std::runtime_error(text), isResumable_(isResumable) {}

    bool isResumable() const { return isResumable_; }

  private:
    bool isResumable_;
};

/// Some frames of a film failed, others are there. The text says which.
class SomeFailed : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace tavora::studio
