#include "studio/app/interruption.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "studio/app/exit_status.h"
#include "studio/files/atomic_file.h"
#include "studio/files/whole_file.h"
#include "tests/files/temporary_folder.h"

namespace tavora::studio {
namespace {

TEST(Interruption, TheFirstSignalAsksAndTheSecondRemovesWhatIsUnfinished) {
    const TemporaryFolder folder;
    const pid_t child = ::fork();
    if (child == 0) {
        watchSignals();
        const PoliteStop stop;
        const AtomicFile first(folder / "a.txt");
        const AtomicFile second(folder / "b.txt");
        writeWholeFile(folder / "c.txt", "kept");
        ::raise(SIGPIPE);
        ::raise(SIGTERM);
        if (!stop.asked() || stopSignal() != SIGTERM || folder.names().size() != 3) ::_exit(1);
        ::raise(SIGTERM);
        ::_exit(2);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, kSignal + SIGTERM);
    EXPECT_EQ(folder.names(), std::set<std::string>{"c.txt"});
}

}  // namespace
}  // namespace tavora::studio
