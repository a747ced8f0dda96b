#include "studio/files/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "studio/files/whole_file.h"
#include "studio/util/error.h"
#include "tests/files/small_disk.h"
#include "tests/files/temporary_folder.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

class AtomicFiles : public ::testing::Test {
  protected:
    static bool isRefused(const fs::path& target, const char* why) {
        try {
            AtomicFile file(target);
        } catch (const Error& error) {
            return std::string(error.what()).find(why) != std::string::npos;
        }
        return false;
    }
    unsigned permissionsOf(const std::string& name) const {
        struct stat status {};
        ::stat((folder_ / name).c_str(), &status);
        return status.st_mode & 0777U;
    }
    fs::path put(const std::string& name, const std::string& bytes) const {
        putBytes(folder_ / name, bytes);
        return folder_ / name;
    }

    const TemporaryFolder folder_;
};

TEST_F(AtomicFiles, AppearOnlyAtCommitAndLeaveNothingWithout) {
    const fs::path old = put("a.txt", "old");
    {
        AtomicFile file(old);
        file.write("new", 3);
        EXPECT_EQ(file.temporaryPath().parent_path(), folder_.path());
        EXPECT_THROW(file.commit([](int) { throw Error(Fault::Output, "no good"); }), Error);
        const SmallDisk disk(4096);
        const std::string large(10000, 'x');
        EXPECT_THROW(file.write(large.data(), large.size()), Error);
        EXPECT_THROW(file.commit(), Error) << "it failed for good";
        EXPECT_THROW(writeWholeFile(folder_ / "b.txt", large), Error);
    }
    EXPECT_EQ(bytesOf(old), "old");
    EXPECT_EQ(folder_.names(), Names{"a.txt"});
    const std::string longest(255, 'x');
    writeWholeFile(folder_ / longest, "x");
    EXPECT_EQ(folder_.names(), (Names{"a.txt", longest}));
}

TEST_F(AtomicFiles, OthersInTheFolderTakeNothingThatIsHeld) {
    AtomicFile slow(folder_ / "a.txt");
    slow.write("slow", 4);
    const std::string name = slow.temporaryPath().filename();
    put(name.substr(0, name.size() - 5) + "x.tmp", "left");
    const std::string elsewhere = ".tavora-nowhere0-0123456789abcdef.tmp";
    put(elsewhere, "held");
    writeWholeFile(folder_ / "a.txt", "fast");
    EXPECT_EQ(folder_.names(), (Names{"a.txt", name, elsewhere}));
    slow.commit();
    EXPECT_EQ(bytesOf(folder_ / "a.txt"), "slow");
}

TEST_F(AtomicFiles, TakePermissionsAndPlaceOfTheFileThatIsMeant) {
    const mode_t mask = ::umask(027);
    ::chmod(put("old.txt", "").c_str(), 0606);
    fs::create_symlink("old.txt", folder_ / "link");
    fs::create_symlink("new.txt", folder_ / "dangling");
    writeWholeFile(folder_ / "link", "x");
    writeWholeFile(folder_ / "dangling", "made");
    ::umask(mask);
    EXPECT_EQ(permissionsOf("old.txt"), 0606U);
    EXPECT_EQ(permissionsOf("new.txt"), 0640U);
    EXPECT_TRUE(fs::is_symlink(folder_ / "link"));
    EXPECT_EQ(bytesOf(folder_ / "old.txt") + bytesOf(folder_ / "new.txt"), "xmade");
}

TEST_F(AtomicFiles, AreRefusedWhereNoPlainFileCanBe) {
    fs::create_directory(folder_ / "sub");
    ::mkfifo((folder_ / "pipe").c_str(), 0600);
    fs::create_symlink("loop", folder_ / "loop");
    const fs::path old = put("a.txt", "");
    EXPECT_TRUE(isRefused(folder_ / "sub/", "name a file, not a folder"));
    EXPECT_TRUE(isRefused(folder_ / "pipe", "device or pipe"));
    EXPECT_TRUE(isRefused(folder_ / "loop", "links"));
    EXPECT_TRUE(isRefused(folder_ / "a.txt/a.txt", "name a folder"));
    EXPECT_TRUE(isRefused(folder_ / std::string(300, 'x'), "shorter name"));
    EXPECT_THROW(readWholeFile(folder_ / "pipe", 100), std::system_error);
    EXPECT_EQ(readWholeFile(put("b", "four"), 4), "four");
    EXPECT_THROW(readWholeFile(folder_ / "b", 3), std::system_error);
    ::chmod(folder_.path().c_str(), 0777);
    ::chmod(old.c_str(), 0444);
    ::chmod((folder_ / "sub").c_str(), 0555);
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0) ::_exit(1);
        const bool refused =
            isRefused(old, "cannot be replaced") && isRefused(folder_ / "sub/b", "may write to");
        ::_exit(refused ? 0 : 2);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace tavora::studio
