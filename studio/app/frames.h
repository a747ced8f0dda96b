#pragma once

#include <string>
#include <vector>

/// Which frames of a film are wanted, and what their files are called.
namespace tavora::studio {

/// "1-48x2,60": single frames, ranges either way and their steps, in the order that they
/// are named, each once. Throws Error, Fault::Usage that says what the text must be.
std::vector<int> frameNumbers(const std::string& text);

/// The numbers as short as they can be said: "1-4, 7".
std::string frameText(const std::vector<int>& frames);

/// A file's name with a place for a number: "####", with as many digits as signs at
/// least, or "%d" or "%04d"; "%%" stands for "%".
class FrameName {
  public:
    /// Throws Error, Fault::Usage for two places.
    explicit FrameName(const std::string& pattern);

    bool hasPlace() const { return hasPlace_; }
    /// With the number in its place; without one the name itself.
    std::string of(int frame) const;

  private:
    std::string before_;
    std::string after_;
    int digits_ = 1;
    bool hasPlace_ = false;
};

}  // namespace tavora::studio
