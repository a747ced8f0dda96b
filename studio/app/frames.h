#pragma once

#include <string>
#include <vector>

/// Frame numbers of a film, and the names of its files.
namespace tavora::studio {

/// Parses frame numbers like "1-48x2,60": frames and ascending or descending ranges, with steps.
/// The result has each frame once, in the order of the text. Throws Error, Fault::Usage, that
/// says what the text must be.
std::vector<int> frameNumbers(const std::string& text);

/// Writes frame numbers, with ranges: "1-4, 7".
std::string frameText(const std::vector<int>& frames);

/// A file name with a placeholder for the frame number: "####", for at least as many digits, or
/// "%d" or "%04d"; "%%" means "%".
class FrameName {
  public:
    /// Throws Error, Fault::Usage, for two placeholders.
    explicit FrameName(const std::string& pattern);

    /// Whether there is a placeholder.
    bool hasNumber() const { return hasNumber_; }
    /// The file name of a frame; the same for all frames when there is no placeholder.
    std::string of(int frame) const;

  private:
    std::string before_;
    std::string after_;
    int digits_ = 1;
    bool hasNumber_ = false;
};

}  // namespace tavora::studio
