#include <cmath>
#include <random>

#include "studio/scene/settings/look_writing.h"
#include "tests/edit/edit_test.h"

namespace tavora::studio {
namespace {

Json zones(double value, bool three) {
    Json list{{{"position", 0}}, {{"position", 1}}};
    if (three) list.insert(list.begin() + 1, Json{{"position", value}});
    return {{"zones", list}};
}

class DocumentEdits : public EditTest {
  protected:
    /// One of the things a user does; each changes something.
    void editSomehow(Document& document, int step) {
        SceneSettings& settings = document.settings;
        const std::size_t surface = random_() % settings.surfaces().size();
        const double value = std::uniform_real_distribution<>(0.001, 0.999)(random_);
        switch (random_() % 5) {
            case 0:
                return document.undo.push(
                    enableStep(settings, surface, !activeBlock(settings.at(surface))));
            case 1:
                return set(document, {{0, shader(sampleBlock({}, 0, {std::to_string(step)}))},
                                      {surface, std::nullopt}});
            case 2:
                return document.undo.push(
                    lookStep(settings, step % 2 == 0 ? "noir" : "comic", settings.surfaces()));
            case 3:
                return edit(document, surface, zones(value, step % 2));
            default:
                return edit(document, surface, value);
        }
    }

    std::mt19937 random_{7};
};

void expectRecordsInStep(SceneSettings& settings) {
    for (const std::size_t surface : settings.surfaces()) {
        if (!settings.at(surface)) continue;
        EXPECT_EQ(settings.record(surface).save(), settings.at(surface)->block);
    }
}

TEST_F(DocumentEdits, AreUndoneAndRedoneToTheByte) {
    const auto document = open();
    SceneSettings& settings = document->settings;
    SurfaceShaders heard = stateOf(*document);
    settings.surfaceChanged = [&](std::size_t i) { heard[i] = settings.at(i); };
    std::vector<SurfaceShaders> states{stateOf(*document)};
    for (int step = 0; states.size() <= 200; ++step) {
        editSomehow(*document, step);
        if (stateOf(*document) != states.back()) states.push_back(stateOf(*document));
    }
    for (std::size_t i = 200; i-- > 0;) {
        document->undo.undo();
        ASSERT_EQ(stateOf(*document), states[i]) << i;
        if (i % 20 == 0) expectRecordsInStep(settings);
    }
    EXPECT_FALSE(document->undo.canUndo());
    EXPECT_FALSE(settings.isModified());
    while (document->undo.canRedo())
        document->undo.redo();
    EXPECT_EQ(stateOf(*document), states.back());
    EXPECT_EQ(heard, states.back());
    expectRecordsInStep(settings);
}

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
    EXPECT_FALSE(undo.did(3)) << "something was undone since";
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

TEST_F(DocumentEdits, ARecordShownAndLeftAloneIsNoEdit) {
    StateBlock odd = sampleBlock();
    odd[2] = std::nanf("");
    odd[3] = -0.0F;
    auto document = open();
    set(*document, {{0, shader(odd)}, {1, shader(sampleBlock(), false)}});
    document->save();
    document = open();
    EXPECT_TRUE(std::isnan(std::get<float>(document->settings.at(0)->block[2])));
    for (const std::size_t surface : document->settings.surfaces())
        document->undo.push(recordStep(document->settings, surface, 0));
    EXPECT_EQ(undoAll(*document), 1U) << "the one without material got the shader";
    EXPECT_FALSE(document->settings.isModified());
    EXPECT_FALSE(document->settings.at(1)->enabled);
    odd.pop_back();
    EXPECT_THROW(set(*document, {{0, shader(odd)}}), Error);
}

TEST_F(DocumentEdits, ASurfaceWithoutTheShaderGetsANewOne) {
    request_.plain = {"Body", "Hair"};
    const auto document = open();
    SceneSettings& settings = document->settings;
    EXPECT_EQ(settings.surfaceOf(settings.record(2).instance()), 2U);
    EXPECT_FALSE(settings.surfaceOf(nullptr));
    document->undo.push(enableStep(settings, 0, true));
    document->undo.push(recordStep(settings, 1, 0));
    const StateBlock defaults = newShaderSettings(settings.module());
    EXPECT_EQ(settings.at(0), shader(defaults));
    EXPECT_EQ(settings.at(1), shader(defaults));
    edit(*document, 1, 0.77);
    document->undo.push(enableStep(settings, 1, false));
    EXPECT_FALSE(settings.at(1)->enabled);
    for (int i = 0; i < 3; ++i)
        document->undo.undo();
    EXPECT_FALSE(settings.at(1));
    EXPECT_EQ(settings.record(1).save(), defaults);
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

}  // namespace
}  // namespace tavora::studio
