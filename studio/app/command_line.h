#pragma once

#include "studio/app/requests.h"

namespace tavora::studio {

/// Parses the command line, and environment variables for options that it lacks. Throws Error,
/// Fault::Usage.
Request parseCommandLine(int argc, char** argv);

}  // namespace tavora::studio
