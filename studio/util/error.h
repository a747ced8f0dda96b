#pragma once

#include <stdexcept>
#include <string_view>

#include "studio/util/text.h"

namespace tavora::studio {

/// What could not be used or made. The value is the program's exit status for it.
enum class Fault : int {
    Usage = 2,   ///< the command line, or a name on it that the scene has not
    Scene = 3,   ///< a scene, look or settings file
    Output = 4,  ///< a file could not be written whole
    Module = 6,  ///< a plug-in module
};

/// Why something could not be done, in one line: what is wrong, where, what to do about it. After
/// Fault::Output the file to be written is as it was before, there or not; or new, where the text
/// says so and that only its folder could not be flushed.
class Error : public std::runtime_error {
  public:
    /// Line breaks and control characters in `text`, which a file may have put there, are
    /// replaced.
    Error(Fault fault, std::string_view text) : std::runtime_error(oneLine(text)), fault_(fault) {}

    Fault fault() const { return fault_; }

  private:
    Fault fault_;
};

}  // namespace tavora::studio
