
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
        const GracefulStop stop;
        const AtomicFile first(folder / "a.txt");
        const AtomicFile second(folder / "b.txt");
        writeWholeFile(folder / "c.txt", "kept");
        ::raise(SIGPIPE);
        ::raise(SIGTERM);
        if (!stop.isRequested() || stopSignal() != SIGTERM || folder.names().size() != 3)
            ::_exit(1);
        ::raise(SIGTERM);
        ::_exit(2);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, kSignal + SIGTERM);
    EXPECT_EQ(folder.names(), std::set<std::string>{"c.txt"});
}

TEST(Progress, BarsFitTheirTerminalsAndNamesCannotPaintThem) {
    EXPECT_EQ(progressBar(0, {}, 30), "[......................]   0%");
    EXPECT_EQ(progressBar(0.25, 30, 30), "[###.........]  25% 0:30 left");
    EXPECT_EQ(progressBar(0.5, 4000, 10), "[]  50% 1:06:40 left");
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

TEST(Progress, TheTimeLeftFollowsTheLastFramesAndTheOneInHand) {
    FrameTimes times;
    EXPECT_FALSE(times.left(0.005, 1, 3)) << "nothing is known";
    EXPECT_NEAR(times.left(0.25, 1.5, 0).value(), 4.5, 1e-9) << "a still";
    EXPECT_NEAR(times.left(0.5, 2, 3).value(), 2 + 3 * 4, 1e-9) << "the others as the first";
    for (int i = 0; i < 20; ++i)
        times.add(i < 10 ? 100 : 10);
    EXPECT_NEAR(times.left(0, 0, 4).value(), 50, 1e-9) << "long ago does not count";
    EXPECT_NEAR(times.left(0.5, 10, 0).value(), 0.5 * (0.5 * 20 + 0.5 * 10), 1e-9);
    EXPECT_GT(times.left(0.01, 60, 0).value(), 50) << "longer than all before";
}

}  // namespace
}  // namespace tavora::studio
