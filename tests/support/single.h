#pragma once

#include <cstdint>
#include <cstring>
#include <random>

namespace tavora::testing {

/// Rounds to single precision in memory, where no optimiser can leave it out.
/// A sum, difference, product or quotient of two singles that is formed in
/// double and rounded here is the one formed in single precision.
inline double single(double value) {
    volatile float rounded = static_cast<float>(value);
    return static_cast<double>(rounded);
}

/// Random values of full mantissa, the same in every run.
class Values {
  public:
    explicit Values(unsigned seed) : engine_(seed) {}

    double real(double from = 0.0, double to = 1.0) {
        return std::uniform_real_distribution<double>(from, to)(engine_);
    }
    float fraction(double from = 0.0, double to = 1.0) {
        return static_cast<float>(real(from, to));
    }
    int integer(int from, int to) { return std::uniform_int_distribution<int>(from, to)(engine_); }
    /// Any bit pattern: also infinities, values that are not numbers, denormals.
    float anyFloat() {
        const std::uint32_t bits = static_cast<std::uint32_t>(engine_());
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    std::int32_t anyInteger() { return static_cast<std::int32_t>(engine_()); }

  private:
    std::mt19937 engine_;
};

}  // namespace tavora::testing
