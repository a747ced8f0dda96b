#pragma once

#include "studio/app/requests.h"

namespace tavora::studio {

/// Reads the command line and the environment that stands in for options.
/// Throws Error, Fault::Usage.
Request parseCommandLine(int argc, char** argv);

}  // namespace tavora::studio
