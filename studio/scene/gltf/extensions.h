#pragma once

#include <string_view>

namespace tavora::studio {

/// How far a glTF extension is supported.
enum class Support {
    Read,        ///< all of it that affects pictures is drawn
    NotDrawn,    ///< not drawn; the scene is complete, but looks different
    Incomplete,  ///< not drawn; parts of the scene are missing
    Unknown      ///< not known to this program
};

/// How far the extension of that name is supported.
Support supportOf(std::string_view extension);

/// Whether a file that requires an extension of this support can be read.
inline bool canRead(Support support) {
    return support == Support::Read || support == Support::NotDrawn;
}

}  // namespace tavora::studio
