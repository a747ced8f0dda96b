#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace tavora::studio {

/// Tells contents apart, however many there are: XXH3 with 128 bits. Nobody who means
/// harm is kept out. One thread.
class Digest {
  public:
    /// Throws std::bad_alloc.
    Digest();
    ~Digest();
    Digest(const Digest&) = delete;
    Digest& operator=(const Digest&) = delete;

    /// Counts bytes and where they end: "ab", "c" is not "a", "bc".
    void add(std::string_view bytes);
    /// Of what was added so far: 32 hexadecimal digits.
    std::string text() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tavora::studio
