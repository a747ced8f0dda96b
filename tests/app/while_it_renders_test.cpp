
#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "studio/app/exit_status.h"
#include "studio/app/interruption.h"
#include "studio/app/progress.h"
#include "studio/files/atomic_file.h"
#include "studio/files/whole_file.h"
#include "studio/util/text.h"
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

TEST(Progress, BarsFitTheirTerminalsAndNamesCannotPaintThem) {
    EXPECT_EQ(progressBar(0, 5, 30), "[......................]   0%");
    EXPECT_EQ(progressBar(0.25, 10, 30), "[###.........]  25% 0:30 left");
    EXPECT_EQ(progressBar(0.5, 4000, 10), "[]  50% 1:06:40 left");
    EXPECT_EQ(progressJson(0.25, 1.5),
              R"({"event":"progress","done":0.2500,"elapsed":1.500,"left":4.500})");
    EXPECT_EQ(progressJson(0, 1.5), R"({"event":"progress","done":0.0000,"elapsed":1.500})");
    EXPECT_EQ(oneLine("a\nb\x1b[31m\x7f\xc3\xbc"), "a b?[31m?\xc3\xbc");
}

TEST(Progress, ABarThatCannotBeRedrawnIsALineAtEveryTenth) {
    testing::internal::CaptureStderr();
    Progress progress(ProgressKind::Bar, false);
    for (const double done : {0.12, 0.15, 0.31, 0.33}) {
        ::usleep(110'000);
        progress.update(done);
    }
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2) << said;
}

}  // namespace
}  // namespace tavora::studio
