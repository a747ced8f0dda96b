#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tavora::studio {

/// A hash that identifies contents: XXH3 with 128 bits. Not a cryptographic hash. One thread.
class Digest {
  public:
    /// Throws std::bad_alloc.
    Digest();
    ~Digest();
    Digest(const Digest&) = delete;
    Digest& operator=(const Digest&) = delete;

    /// Adds bytes and their length, so that adding "ab" and "c" differs from "a" and "bc".
    void add(std::string_view bytes);
    /// The hash of everything that was added so far: 32 hexadecimal digits.
    std::string text() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tavora::studio
