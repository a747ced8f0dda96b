#pragma once

#include <functional>

#include "studio/app/requests.h"
#include "studio/setup/report.h"

namespace tavora::studio {

/// The commands that need the window's libraries, which the plain program does
/// not load. Both throw what the commands of commands.h throw.
struct WindowCommands {
    std::function<void(const EditRequest&, Report&)> edit;
    std::function<void(const PanelRequest&, Report&)> drawPanel;
};

/// Reads the command line, does what it asks and returns the exit status.
/// Once, from the main thread.
int runProgram(int argc, char** argv, const WindowCommands& window);

}  // namespace tavora::studio
