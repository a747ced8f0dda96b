#include <cmath>
#include <gmock/gmock.h>

#include "studio/edit/recent_files.h"
#include "studio/scene/settings/look_writing.h"
#include "studio/util/error.h"
#include "tests/edit/edit_test.h"

namespace tavora::studio {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using DocumentEdits = EditTest;
using Saving = EditTest;

TEST_F(DocumentEdits, OfOneGestureAreUndoneTogether) {
    const auto document = open();
    UndoStack& undo = document->undo;
    edit(*document, 0, 0.11, 1);
    edit(*document, 0, 0.12, 1);  // joined
    edit(*document, 0, 0.13, 2);
    edit(*document, 1, 0.14, 2);  // another surface
    edit(*document, 0, 0.15, 2);
    undo.endStep();
    edit(*document, 0, 0.16, 2);
    document->save();
    edit(*document, 0, 0.17, 2);
    edit(*document, 0, 0.18);
    edit(*document, 0, 0.19);
    EXPECT_EQ(undo.undoText(), "edit of Body");
    EXPECT_EQ(undoAll(*document), 8U);
    undo.redo();
    EXPECT_EQ(named(*document, 0)["edgeCoverage"], 0.12);
    edit(*document, 0, 0.2, 1);
    EXPECT_FALSE(undo.canRedo()) << "a new change drops what was undone";
    undo.undo();
    undo.redo();
    edit(*document, 0, 0.3, 1);
    EXPECT_EQ(undoAll(*document), 3U) << "an undo ends a gesture, though it be redone";
}

TEST_F(DocumentEdits, ThatComeBackToTheirStartOrAreAbandonedAreNoStep) {
    const auto document = open();
    UndoStack& undo = document->undo;
    edit(*document, 0, 0.5, 3);
    undo.endStep();
    edit(*document, 0, 0.6, 3);
    edit(*document, 0, 0.5, 3);
    edit(*document, 0, 0.7, 3);
    undo.push(enableStep(document->settings, 0, true));
    const double start = named(*document, 1)["edgeCoverage"];
    edit(*document, 1, 0.6, 3);
    edit(*document, 1, start, 3);
    EXPECT_EQ(undoAll(*document), 2U);

    undo.redo();
    const auto before = stateOf(*document);
    EXPECT_FALSE(undo.isLastStepOf(3)) << "something was undone since";
    edit(*document, 0, 0.8, 4);
    undo.abandon(3);
    EXPECT_NE(stateOf(*document), before);
    document->settings.stateChanged = [&] { EXPECT_FALSE(undo.canRedo()) << "menus show it"; };
    undo.abandon(4);
    document->settings.stateChanged = {};
    EXPECT_EQ(stateOf(*document), before);
    edit(*document, 0, 0.9, 3);
    EXPECT_EQ(undoAll(*document), 2U);
}

TEST_F(DocumentEdits, AreBoundedInNumberAndSize) {
    const auto document = open();
    UndoStack stack(document->settings);
    const auto push = [&](std::size_t size, std::int32_t value, Gesture gesture = 0) {
        stack.push({"", {{0, {}, shader({value, std::string(size, 'x')})}}, gesture});
    };
    const auto undoable = [](UndoStack copy) {
        std::size_t count = 0;
        for (; copy.canUndo(); ++count)
            copy.undo();
        return count;
    };
    for (int i = 0; i < 1100; ++i)
        push(1, i);
    EXPECT_EQ(undoable(stack), 1000U);
    for (int i = 0; i < 5; ++i)
        push(std::size_t{20} << 20, i);
    EXPECT_EQ(undoable(stack), 3U);
    push(std::size_t{80} << 20, 0);
    EXPECT_EQ(undoable(stack), 1U);
    stack.undo();
    for (int i = 0; i < 10; ++i)
        push(1, i);
    EXPECT_EQ(undoable(stack), 10U) << "what was undone and dropped no longer counts";
    for (int i = 10; i < 14; ++i)
        push(std::size_t{20} << 20, i, 1);
    push(1, 20);
    EXPECT_EQ(undoable(stack), 12U) << "nor what was joined";
}

TEST_F(DocumentEdits, LooksAreWrittenAsTheyAreRead) {
    const auto document = open();
    SceneSettings& settings = document->settings;
    edit(*document, 0, R"({"edgeColor": [0.1, 0.7, 0.333], "edgeEnable": true, "lights": ["Key"],
                           "zones": [{"position": 0.1, "color": "#123456"}, {"position": 1}]})"_j);
    writeLook(settings.at(0)->block, folder_ / "mine.json");
    document->undo.push(lookStep(settings, folder_ / "mine.json", {1, 2}));
    EXPECT_EQ(settings.at(1), settings.at(0));
    EXPECT_EQ(document->undo.undoText(), "look mine on 2 surfaces");
    document->undo.undo();
    EXPECT_NE(settings.at(2), settings.at(0));

    StateBlock odd = sampleBlock();
    odd[2] = std::nanf("");
    set(*document, {{0, shader(odd)}});
    EXPECT_THROW(writeLook(settings.at(0)->block, folder_ / "odd.json"), Error);
    EXPECT_FALSE(exists(folder_ / "odd.json"));
}

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
