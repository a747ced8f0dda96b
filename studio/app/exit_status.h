#pragma once

namespace tavora::studio {

/// What the program's exit status means beside the values of Fault. A signal n
/// that stopped it gives 128 + n, but kResumable in a film.
enum ExitStatus : int {
    kDone = 0,
    kInternal = 1,
    kSomeFailed = 5,  ///< frames, of a film that went on
    kResumable = 75,  ///< stopped; the same command goes on with --existing skip
    kSignal = 128
};

}  // namespace tavora::studio
