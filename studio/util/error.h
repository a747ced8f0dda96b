#pragma once

#include <stdexcept>
#include <string_view>

#include "studio/util/text.h"

namespace tavora::studio {

/// The kind of an Error. The value is the program's exit status.
enum class Fault : int {
    Usage = 2,   ///< the command line, or a name on it that the scene does not have
    Scene = 3,   ///< a scene, look or settings file
    Output = 4,  ///< a file could not be written completely
    Module = 6,  ///< a plug-in module
};

/// Thrown when something cannot be done. The text is one line that says what is wrong, where, and
/// what to do about it. After Fault::Output the file to be written is as before, or does not exist
/// if it did not before. There is one exception, which the text then says: the file is written,
/// but its folder could not be flushed to disk.
class Error : public std::runtime_error {
  public:
    /// Replaces line breaks and control characters in `text`, which may come from a file.
    Error(Fault fault, std::string_view text) : std::runtime_error(oneLine(text)), fault_(fault) {}

    Fault fault() const { return fault_; }

  private:
    Fault fault_;
};

}  // namespace tavora::studio
