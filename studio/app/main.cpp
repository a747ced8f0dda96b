#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <unistd.h>

#include "studio/app/program.h"
#include "studio/util/error.h"

namespace {

namespace fs = std::filesystem;

// Replaces this program by the one with the window, in the same folder, which parses the same
// command line. So rendering does not have to wait for the window's libraries to load.
[[noreturn]] void becomeWindowProgram(char** argv) {
    const fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "tavora-window";
    execv(program.c_str(), argv);
    throw tavora::studio::Error(
        tavora::studio::Fault::Module,
        fmt::format("{}: cannot start the program with the window: {}; scripts/build makes it",
                    program.string(), std::strerror(errno)));
}

}  // namespace

int main(int argc, char** argv) {
    const auto become = [argv](const auto&, auto&) { becomeWindowProgram(argv); };
    return tavora::studio::runProgram(argc, argv, {become, become});
}
