#pragma once

namespace tavora::studio {

/// What the program's exit status means beside the values of Fault. A signal n
/// that stopped it gives 128 + n.
enum ExitStatus : int { kDone = 0, kInternal = 1, kSignal = 128 };

}  // namespace tavora::studio
