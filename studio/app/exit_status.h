#pragma once

namespace tavora::studio {

/// What the program's exit status means. A signal n that stopped it gives 128 + n.
enum ExitStatus : int {
    kDone = 0,
    kInternal = 1,
    kUsage = 2,   ///< the command line, or a name on it that the scene has not
    kScene = 3,   ///< a scene, look or settings file
    kWrite = 4,   ///< an output could not be written whole
    kPlugin = 6,  ///< the module
    kSignal = 128
};

}  // namespace tavora::studio
