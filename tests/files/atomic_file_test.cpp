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

std::string messageOf(const fs::path& target) {
    try {
        AtomicFile file(target);
    } catch (const Error& error) {
        return error.what();
    }
    return {};
}

unsigned permissionsOf(const fs::path& file) {
    struct stat status {};
    ::stat(file.c_str(), &status);
    return status.st_mode & 0777U;
}

TEST(AtomicFile, AppearsOnlyAtCommitAndLeavesNothingWithout) {
    const TemporaryFolder folder;
    putBytes(folder / "a.txt", "old");
    const auto throwing = [](int descriptor) {
        std::string written(3, ' ');
        EXPECT_EQ(::pread(descriptor, written.data(), written.size(), 0), 3);
        EXPECT_EQ(written, "new");
        throw Error(Fault::Output, "no good");
    };
    {
        AtomicFile file(folder / "a.txt");
        file.write("new", 3);
        EXPECT_EQ(file.temporaryPath().parent_path(), folder.path());
        EXPECT_TRUE(fs::exists(file.temporaryPath()));
        EXPECT_THROW(file.commit(throwing), Error);
    }
    AtomicFile(folder / "a.txt").write("new", 3);
    EXPECT_EQ(bytesOf(folder / "a.txt"), "old");
    EXPECT_EQ(folder.names(), Names{"a.txt"});
    AtomicFile file(folder / "a.txt");
    file.write("new", 3);
    file.commit();
    EXPECT_EQ(bytesOf(folder / "a.txt"), "new");
    const std::string longest(255, 'x');
    writeWholeFile(folder / longest, "x");
    EXPECT_EQ(folder.names(), (Names{"a.txt", longest}));
}

TEST(AtomicFile, OthersInTheFolderTakeNothingThatIsHeld) {
    const TemporaryFolder folder;
    AtomicFile slow(folder / "a.txt");
    slow.write("slow", 4);
    // As a killed process leaves it, and as another machine may still hold it.
    const std::string name = slow.temporaryPath().filename();
    const std::string abandoned = name.substr(0, name.size() - 5) + "x.tmp";
    const std::string elsewhere = ".tavora-nowhere0-0123456789abcdef.tmp";
    putBytes(folder / abandoned, "left");
    putBytes(folder / elsewhere, "held");
    writeWholeFile(folder / "a.txt", "fast");
    EXPECT_EQ(folder.names(), (Names{"a.txt", name, elsewhere}));
    slow.commit();
    EXPECT_EQ(bytesOf(folder / "a.txt"), "slow");
}

TEST(AtomicFile, PermissionsComeFromTheOldFileOrTheMask) {
    const TemporaryFolder folder;
    const mode_t mask = ::umask(027);
    putBytes(folder / "old.txt", "");
    ::chmod((folder / "old.txt").c_str(), 0606);
    writeWholeFile(folder / "old.txt", "x");
    writeWholeFile(folder / "new.txt", "x");
    ::umask(mask);
    EXPECT_EQ(permissionsOf(folder / "old.txt"), 0606U);
    EXPECT_EQ(permissionsOf(folder / "new.txt"), 0640U);
}

TEST(AtomicFile, FollowsLinksToTheFileTheyMean) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "real");
    putBytes(folder / "real/a.txt", "old");
    fs::create_symlink("real/a.txt", folder / "link");
    fs::create_symlink("real/b.txt", folder / "dangling");
    fs::create_symlink("loop", folder / "loop");
    writeWholeFile(folder / "link", "new");
    writeWholeFile(folder / "dangling", "made");
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(bytesOf(folder / "real/a.txt"), "new");
    EXPECT_EQ(bytesOf(folder / "real/b.txt"), "made");
    EXPECT_NE(messageOf(folder / "loop").find("links"), std::string::npos);
}

TEST(AtomicFile, RefusesWhatIsNoPlainFile) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "sub");
    ::mkfifo((folder / "pipe").c_str(), 0600);
    putBytes(folder / "file", "");
    EXPECT_NE(messageOf(folder / "sub").find("name a file, not a folder"), std::string::npos);
    EXPECT_NE(messageOf(folder / "sub/").find("name a file, not a folder"), std::string::npos);
    EXPECT_NE(messageOf(folder / "pipe").find("device or pipe"), std::string::npos);
    EXPECT_NE(messageOf("/dev/null").find("device or pipe"), std::string::npos);
    EXPECT_NE(messageOf(folder / "none/a.txt").find("create the folder"), std::string::npos);
    EXPECT_NE(messageOf(folder / "file/a.txt").find("name a folder"), std::string::npos);
    EXPECT_NE(messageOf(folder / std::string(300, 'x')).find("shorter name"), std::string::npos);
}

TEST(AtomicFile, RefusesWithoutPermission) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "closed");
    putBytes(folder / "a.txt", "old");
    ::chmod(folder.path().c_str(), 0777);
    ::chmod((folder / "a.txt").c_str(), 0444);
    ::chmod((folder / "closed").c_str(), 0555);
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0) ::_exit(1);
        if (messageOf(folder / "a.txt").find("cannot be replaced") == std::string::npos) ::_exit(2);
        ::_exit(messageOf(folder / "closed/b").find("may write to") == std::string::npos ? 3 : 0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

TEST(AtomicFile, FullDiskLeavesTheOldFileAndFailsForGood) {
    const TemporaryFolder folder;
    putBytes(folder / "a.txt", "old");
    const std::string large(10000, 'x');
    {
        const SmallDisk disk(4096);
        AtomicFile file(folder / "a.txt");
        EXPECT_THROW(file.write(large.data(), large.size()), Error);
        EXPECT_THROW(file.write("x", 1), Error);
        EXPECT_THROW(file.commit(), Error);
        EXPECT_THROW(writeWholeFile(folder / "b.txt", large), Error);
    }
    EXPECT_EQ(bytesOf(folder / "a.txt"), "old");
    EXPECT_EQ(folder.names(), Names{"a.txt"});
}

TEST(WholeFile, ReadsPlainFilesUpToALimit) {
    const TemporaryFolder folder;
    const std::string bytes("a\0b\n", 4);
    writeWholeFile(folder / "a", bytes);
    ::mkfifo((folder / "pipe").c_str(), 0600);
    EXPECT_EQ(readWholeFile(folder / "a", 4), bytes);
    EXPECT_THROW(readWholeFile(folder / "a", 3), std::system_error);
    EXPECT_THROW(readWholeFile(folder.path(), 100), std::system_error);
    EXPECT_THROW(readWholeFile(folder / "pipe", 100), std::system_error);
    EXPECT_THROW(readWholeFile(folder / "none", 100), std::system_error);
}

}  // namespace
}  // namespace tavora::studio
