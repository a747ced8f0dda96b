#include <gmock/gmock.h>

#include "studio/edit/recent_files.h"
#include "studio/util/error.h"
#include "tests/edit/edit_test.h"
#include "tests/files/small_disk.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Saving : public EditTest {};

TEST_F(Saving, ALookThatStandsInIsNoWorkUntilSomethingChanges) {
    auto document = open();
    EXPECT_TRUE(document->settings.at(0)->enabled);
    EXPECT_EQ(document->settings.clean(0), document->settings.at(0));
    EXPECT_FALSE(document->settings.isModified());
    edit(*document, 0, 0.5);
    EXPECT_TRUE(document->settings.isModified());
    EXPECT_THAT(document->save(), IsEmpty()) << "nobody changed the surface without material";
    EXPECT_FALSE(document->settings.isModified());
    const auto saved = stateOf(*document);
    document->undo.undo();
    EXPECT_TRUE(document->settings.isModified());
    document->undo.redo();
    EXPECT_FALSE(document->settings.isModified());

    document = open();
    EXPECT_FALSE(document->settings.isModified());
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(document->settings.at(i), saved[i]);
    request_.looks = {{"Hair", "noir"}};
    EXPECT_TRUE(open()->settings.isModified()) << "a look that was asked for is work";
}

TEST_F(Saving, WhatTheFileCannotHoldIsTold) {
    auto document = open();
    edit(*document, 3, 0.5);
    edit(*document, 0, 0.6);
    EXPECT_THAT(document->save(), ElementsAre(HasSubstr("\"Default\" has no material")));
    EXPECT_FALSE(document->settings.isModified());
    undoAll(*document);
    set(*document, {{0, {}}});
    document->save();
    document = open();
    EXPECT_FALSE(document->settings.at(0)->enabled) << "taken off, so turned off in the file";
    EXPECT_TRUE(document->settings.at(1)->enabled);
    request_.plain = {"Hair"};
    document = open();
    EXPECT_EQ(document->settings.at(1), shader(document->settings.clean(1)->block, false));
}

TEST_F(Saving, AFullDiskCostsNeitherTheFileNorTheWork) {
    const auto document = open();
    edit(*document, 0, 0.5);
    const auto work = stateOf(*document);
    const std::string before = bytesOf(file_);
    {
        const SmallDisk full(64);
        EXPECT_THROW(document->save(), Error);
        EXPECT_THROW(document->saveAs(folder_ / "other.glb"), Error);
        EXPECT_THROW(document->recovery.write(), Error);
    }
    EXPECT_EQ(bytesOf(file_), before);
    EXPECT_EQ(document->file.path(), file_);
    EXPECT_TRUE(document->settings.isModified());
    EXPECT_EQ(stateOf(*document), work);
    EXPECT_NE(document->settings.clean(0), work[0]);
    document->recovery.write();
    const fs::directory_iterator kept(folder_ / "state/tavora/recovery");
    EXPECT_EQ(std::distance(kept, {}), 2) << "what failed is tried again: the work and its lock";
    document->save();
    EXPECT_EQ(stateOf(*open())[0], work[0]);
}

TEST_F(Saving, AFileThatChangedOnDiskIsNoticed) {
    const auto document = open();
    edit(*document, 0, 0.5);
    fs::last_write_time(file_, fs::last_write_time(file_) + std::chrono::hours(1));
    EXPECT_FALSE(document->file.changedOnDisk()) << "touched, but the same";

    writeScene({"Glass", "New", "Body"});
    const std::string theirs = bytesOf(file_);
    EXPECT_TRUE(document->file.changedOnDisk());
    EXPECT_THROW(document->save(), Error);
    EXPECT_EQ(bytesOf(file_), theirs);
    EXPECT_TRUE(document->settings.isModified());
    EXPECT_THAT(document->save(true), ElementsAre(HasSubstr("\"Hair\""), HasSubstr("\"Default\"")));
    EXPECT_FALSE(document->settings.isModified());
    EXPECT_FALSE(document->file.changedOnDisk());
    const auto after = open();
    EXPECT_EQ(after->settings.at(0), document->settings.at(2));
    EXPECT_FALSE(after->settings.at(1));
    EXPECT_EQ(after->settings.at(2), document->settings.at(0));

    edit(*document, 0, 0.6);
    fs::remove(file_);
    EXPECT_FALSE(document->file.changedOnDisk());
    EXPECT_THAT(refusal([&] { document->save(true); }), HasSubstr("No such file"));
    EXPECT_TRUE(document->settings.isModified());
}

TEST_F(Saving, SavingAsGoesOnWithTheNewFile) {
    const auto document = open();
    const std::string before = bytesOf(file_);
    edit(*document, 0, 0.5);
    document->recovery.write();
    EXPECT_THROW(document->saveAs(folder_ / "other.gltf"), Error);
    EXPECT_EQ(document->file.path(), file_);
    document->saveAs(folder_ / "other.glb");
    EXPECT_FALSE(document->settings.isModified());
    EXPECT_TRUE(fs::is_empty(folder_ / "state/tavora/recovery")) << "of the first file";
    edit(*document, 0, 0.25);
    document->save();
    EXPECT_EQ(bytesOf(file_), before);
    file_ = folder_ / "other.glb";
    EXPECT_EQ(named(*open(), 0)["edgeCoverage"], 0.25);
}

TEST_F(Saving, RecentFilesAreTheLastTenEachOnce) {
    EXPECT_TRUE(recentFiles().empty());
    for (int i = 0; i < 12; ++i)
        addRecentFile("/scenes/" + std::to_string(i) + ".glb");
    addRecentFile("/scenes/deep/../7.glb");
    addRecentFile(folder_ / "two\nlines.glb");
    const std::vector<fs::path> files = recentFiles();
    ASSERT_EQ(files.size(), 10U);
    EXPECT_EQ(std::tie(files[0], files[1], files[9]),
              std::tuple("/scenes/7.glb", "/scenes/11.glb", "/scenes/2.glb"));
    putBytes(folder_ / "plain", "");
    setSettingsFolder(folder_ / "plain");
    addRecentFile("/scenes/a.glb");
    EXPECT_TRUE(recentFiles().empty());
}

}  // namespace
}  // namespace tavora::studio
