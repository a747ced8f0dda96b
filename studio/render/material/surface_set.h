#pragma once

#include <cstddef>
#include <cstdint>

namespace tavora::studio {

/// A set of surfaces in one word. In scenes of more than 64 surfaces some share
/// a place, so a set may seem to hold more than was put in, never less.
class SurfaceSet {
  public:
    void add(std::size_t surface) { bits_ |= std::uint64_t{1} << (surface % 64); }
    void add(SurfaceSet other) { bits_ |= other.bits_; }
    bool meets(SurfaceSet other) const { return (bits_ & other.bits_) != 0; }
    bool isEmpty() const { return bits_ == 0; }

  private:
    std::uint64_t bits_ = 0;
};

}  // namespace tavora::studio
