#pragma once

namespace tavora::studio {

/// Exit statuses of the program, in addition to the values of Fault. When signal n stops it, the
/// exit status is 128 + n, or kResumable in a film.
enum ExitStatus : int {
    kDone = 0,
    kInternal = 1,
    kSomeFailed = 5,  ///< some frames of a film failed, with --keep-going
    kResumable = 75,  ///< stopped; the same command with --existing skip continues
    kSignal = 128
};

}  // namespace tavora::studio
