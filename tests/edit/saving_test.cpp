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

class Saving : public EditTest {};

TEST_F(Saving, ALookThatStandsInIsNoWorkUntilSomethingChanges) {
    auto document = open();
    EXPECT_TRUE(document->settings(0)->enabled);
    EXPECT_EQ(document->cleanSettings(0), document->settings(0));
    EXPECT_FALSE(document->isModified());
    edit(*document, 0, 0.5);
    EXPECT_TRUE(document->isModified());
    document->save();
    EXPECT_FALSE(document->isModified());
    EXPECT_TRUE(document->warnings().empty()) << "nobody changed the surface without material";
    const auto saved = stateOf(*document);
    document->undo();
    EXPECT_TRUE(document->isModified());
    document->redo();
    EXPECT_FALSE(document->isModified());

    document = open();
    EXPECT_FALSE(document->isModified());
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(document->settings(i), saved[i]);
    request_.looks = {{"Hair", "noir"}};
    EXPECT_TRUE(open()->isModified()) << "a look that was asked for is work";
}

TEST_F(Saving, WhatTheFileCannotHoldIsTold) {
    auto document = open();
    edit(*document, 3, 0.5);
    edit(*document, 0, 0.6);
    document->save();
    EXPECT_THAT(document->warnings(), ElementsAre(HasSubstr("\"Default\" has no material")));
    EXPECT_FALSE(document->isModified());
    undoAll(*document);
    document->setSettings({{0, {}}}, "never there");
    document->save();
    document = open();
    EXPECT_FALSE(document->settings(0)->enabled) << "taken off, so turned off in the file";
    EXPECT_TRUE(document->settings(1)->enabled);
    request_.plain = {"Hair"};
    document = open();
    EXPECT_EQ(document->settings(1), shader(document->cleanSettings(1)->block, false));
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
        EXPECT_THROW(document->writeRecovery(), Error);
    }
    EXPECT_EQ(bytesOf(file_), before);
    EXPECT_EQ(document->path(), file_);
    EXPECT_TRUE(document->isModified());
    EXPECT_EQ(stateOf(*document), work);
    EXPECT_NE(document->cleanSettings(0), work[0]);
    document->writeRecovery();
    document->save();
    EXPECT_EQ(stateOf(*open())[0], work[0]);
}

TEST_F(Saving, AFileThatChangedOnDiskIsNoticed) {
    const auto document = open();
    edit(*document, 0, 0.5);
    fs::last_write_time(file_, fs::last_write_time(file_) + std::chrono::hours(1));
    EXPECT_FALSE(document->changedOnDisk()) << "touched, but the same";

    writeScene({"Glass", "New", "Body"});
    const std::string theirs = bytesOf(file_);
    EXPECT_TRUE(document->changedOnDisk());
    EXPECT_THROW(document->save(), Error);
    EXPECT_EQ(bytesOf(file_), theirs);
    EXPECT_TRUE(document->isModified());
    document->save(true);
    EXPECT_FALSE(document->isModified());
    EXPECT_FALSE(document->changedOnDisk());
    EXPECT_THAT(document->warnings(), ElementsAre(HasSubstr("\"Hair\""), HasSubstr("\"Default\"")));
    const auto after = open();
    EXPECT_EQ(after->settings(0), document->settings(2));
    EXPECT_FALSE(after->settings(1));
    EXPECT_EQ(after->settings(2), document->settings(0));

    edit(*document, 0, 0.6);
    fs::remove(file_);
    EXPECT_FALSE(document->changedOnDisk());
    EXPECT_THAT(refusal([&] { document->save(true); }), HasSubstr("No such file"));
    EXPECT_TRUE(document->isModified());
}

TEST_F(Saving, SavingAsGoesOnWithTheNewFile) {
    auto document = open();
    const std::string before = bytesOf(file_);
    edit(*document, 0, 0.5);
    document->writeRecovery();
    EXPECT_THROW(document->saveAs(folder_ / "other.gltf"), Error);
    EXPECT_EQ(document->path(), file_);
    document->saveAs(folder_ / "other.glb");
    EXPECT_FALSE(document->isModified());
    edit(*document, 0, 0.25);
    document->save();
    EXPECT_EQ(bytesOf(file_), before);
    document.reset();
    EXPECT_FALSE(open()->hasRecovery()) << "nothing of the first file is unsaved";
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
    EXPECT_EQ(files[0], "/scenes/7.glb");
    EXPECT_EQ(files[1], "/scenes/11.glb");
    EXPECT_EQ(files[9], "/scenes/2.glb");
    putBytes(folder_ / "plain", "");
    setSettingsFolder(folder_ / "plain");
    addRecentFile("/scenes/a.glb");
    EXPECT_TRUE(recentFiles().empty());
}

}  // namespace
}  // namespace tavora::studio
