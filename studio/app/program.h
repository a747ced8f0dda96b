#pragma once

#include <functional>

#include "studio/app/requests.h"
#include "studio/setup/report.h"

namespace tavora::studio {

/// The commands that need the window's libraries. They throw what the commands in commands.h
/// throw.
struct WindowCommands {
    std::function<void(const EditRequest&, Report&)> edit;
    std::function<void(const PanelRequest&, Report&)> drawPanel;
};

/// Parses the command line, runs the command and returns the exit status. To be called once, from
/// the main thread.
int runProgram(int argc, char** argv, const WindowCommands& window);

}  // namespace tavora::studio
