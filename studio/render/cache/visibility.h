#pragma once

namespace tavora::studio {

/// The fraction of a light, 0..1, that reaches a point past all that is in its way; or that
/// this is not known.
class Visibility {
  public:
    constexpr Visibility() = default;  ///< not known
    constexpr explicit Visibility(double fraction) : fraction_(fraction) {}

    constexpr bool isKnown() const { return fraction_ >= 0; }
    /// Only where it is known.
    constexpr double fraction() const { return fraction_; }

  private:
    double fraction_ = -1;
};

}  // namespace tavora::studio
