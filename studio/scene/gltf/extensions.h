#pragma once

#include <string_view>

namespace tavora::studio {

/// What becomes of a glTF extension.
enum class Support {
    Read,      ///< all that concerns pictures is drawn
    NotDrawn,  ///< the scene looks right without it, but not as it was meant
    Missed,    ///< something of the scene is missing without it
    Unknown    ///< nothing is known of it
};

Support supportOf(std::string_view extension);

/// Whether a file that requires it can be read.
inline bool canDoWithout(Support support) {
    return support == Support::Read || support == Support::NotDrawn;
}

}  // namespace tavora::studio
