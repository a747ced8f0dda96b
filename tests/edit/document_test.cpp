#include <cmath>
#include <gmock/gmock.h>
#include <random>

#include "tests/edit/edit_test.h"

namespace tavora::studio {
namespace {

using testing::HasSubstr;

class DocumentEdits : public EditTest {
  protected:
    /// One of the things a user does; each changes something.
    void editSomehow(Document& document, int step) {
        const std::size_t surface = random_() % document.surfaces().size();
        const double value = std::uniform_real_distribution<>(0.001, 0.999)(random_);
        switch (random_() % 5) {
            case 0:
                return document.setEnabled(surface, !activeBlock(document.settings(surface)));
            case 1:
                return document.setSettings(
                    {{0, shader(sampleBlock({}, 0, {std::to_string(step)}))},
                     {surface, std::nullopt}},
                    "paste");
            case 2:
                return document.wearLook(step % 2 == 0 ? "noir" : "comic", document.surfaces());
            case 3: {
                Json zones = R"([{"position": 0}, {"position": 1}])"_j;
                if (step % 2 == 0) zones.push_back({{"position", value}});
                return edit(document, surface, {{"zones", zones}});
            }
            default:
                return edit(document, surface, value);
        }
    }

    std::mt19937 random_{7};
};

void expectRecordsInStep(Document& document) {
    for (const std::size_t surface : document.surfaces()) {
        if (!document.settings(surface)) continue;
        EXPECT_EQ(document.record(surface).save(), document.settings(surface)->block);
    }
}

TEST_F(DocumentEdits, AreUndoneAndDoneAgainToTheByte) {
    const auto document = open();
    SurfaceShaders heard = stateOf(*document);
    document->settingsChanged = [&](std::size_t i) { heard[i] = document->settings(i); };
    std::vector<SurfaceShaders> states{stateOf(*document)};
    for (int step = 0; states.size() <= 200; ++step) {
        editSomehow(*document, step);
        if (stateOf(*document) != states.back()) states.push_back(stateOf(*document));
    }
    for (std::size_t i = 200; i-- > 0;) {
        document->undo();
        ASSERT_EQ(stateOf(*document), states[i]) << i;
        if (i % 20 == 0) expectRecordsInStep(*document);
    }
    EXPECT_FALSE(document->canUndo());
    EXPECT_FALSE(document->isModified());
    while (document->canRedo())
        document->redo();
    EXPECT_EQ(stateOf(*document), states.back());
    EXPECT_EQ(heard, states.back());
    expectRecordsInStep(*document);
}

TEST_F(DocumentEdits, OfOneGestureAreUndoneTogether) {
    const auto document = open();
    edit(*document, 0, 0.11, 1);
    edit(*document, 0, 0.12, 1);  // joined
    edit(*document, 0, 0.13, 2);
    edit(*document, 1, 0.14, 2);  // another surface
    edit(*document, 0, 0.15, 2);
    document->endStep();
    edit(*document, 0, 0.16, 2);
    document->save();
    edit(*document, 0, 0.17, 2);
    edit(*document, 0, 0.18);
    edit(*document, 0, 0.19);
    EXPECT_EQ(document->undoText(), "edit of Body");
    EXPECT_EQ(undoAll(*document), 8U);
    document->redo();
    EXPECT_EQ(named(*document, 0)["edgeCoverage"], 0.12);
    edit(*document, 0, 0.2, 1);
    EXPECT_FALSE(document->canRedo()) << "a new change drops what was undone";
    edit(*document, 0, 0.21, 2);
    document->undo();
    edit(*document, 0, 0.22, 1);
    EXPECT_EQ(undoAll(*document), 3U) << "nothing is joined over an undo";

    edit(*document, 0, 0.5, 3);
    document->endStep();
    edit(*document, 0, 0.6, 3);
    edit(*document, 0, 0.5, 3);  // back at its start: no step
    edit(*document, 0, 0.7, 3);
    document->setEnabled(0, true);
    EXPECT_EQ(undoAll(*document), 2U);
}

TEST_F(DocumentEdits, AreBoundedInNumberAndSize) {
    StepList list;
    const auto step = [](std::size_t size, std::int32_t value) {
        SurfaceShader after = shader({value, std::string(size, 'x')});
        return Step{"", {{0, {}, std::move(after)}}, 0};
    };
    const auto undoable = [](StepList copy) {
        std::size_t count = 0;
        for (; copy.canUndo(); ++count)
            copy.undo();
        return count;
    };
    for (int i = 0; i < 1100; ++i)
        list.add(step(1, i));
    EXPECT_EQ(undoable(list), 1000U);
    for (int i = 0; i < 5; ++i)
        list.add(step(std::size_t{20} << 20, i));
    EXPECT_EQ(undoable(list), 3U);
    list.add(step(std::size_t{80} << 20, 0));
    EXPECT_EQ(undoable(list), 1U);
    list.undo();
    for (int i = 0; i < 10; ++i)
        list.add(step(1, i));
    EXPECT_EQ(undoable(list), 10U) << "what was undone and dropped no longer counts";
}

TEST_F(DocumentEdits, ARecordShownAndLeftAloneIsNoEdit) {
    StateBlock odd = sampleBlock();
    odd[2] = std::nanf("");
    odd[3] = -0.0F;
    auto document = open();
    document->setSettings({{0, shader(odd)}, {1, shader(sampleBlock(), false)}}, "odd");
    document->save();
    document = open();
    EXPECT_TRUE(std::isnan(std::get<float>(document->settings(0)->block[2])));
    for (const std::size_t surface : document->surfaces())
        if (document->settings(surface)) document->takeRecord(surface, 0);
    EXPECT_FALSE(document->canUndo());
    EXPECT_FALSE(document->isModified());
    EXPECT_FALSE(document->settings(1)->enabled);
    odd.pop_back();
    EXPECT_THROW(document->setSettings({{0, shader(odd)}}, "damaged"), Error);
}

TEST_F(DocumentEdits, ASurfaceWithoutTheShaderWearsANewOne) {
    request_.plain = {"Body", "Hair"};
    const auto document = open();
    EXPECT_EQ(document->surfaceOf(document->record(2).instance()), 2U);
    EXPECT_FALSE(document->surfaceOf(nullptr));
    document->setEnabled(0, true);
    document->takeRecord(1, 0);
    const StateBlock defaults = newShaderSettings(document->moduleCopy());
    EXPECT_EQ(document->settings(0), shader(defaults));
    EXPECT_EQ(document->settings(1), shader(defaults));
    edit(*document, 1, 0.77);
    document->undo();
    document->undo();
    EXPECT_FALSE(document->settings(1));
    EXPECT_EQ(document->record(1).save(), defaults);
}

TEST_F(DocumentEdits, LooksAreWrittenAsTheyAreRead) {
    const auto document = open();
    edit(*document, 0, R"({"edgeColor": [0.1, 0.7, 0.333], "edgeEnable": true, "lights": ["Key"],
                           "zones": [{"position": 0.1, "color": "#123456"}, {"position": 1}]})"_j);
    document->saveLook(0, folder_ / "mine.json");
    document->wearLook(folder_ / "mine.json", {1, 2});
    EXPECT_EQ(document->settings(1), document->settings(0));
    EXPECT_EQ(document->undoText(), "look mine on 2 surfaces");
    document->undo();
    EXPECT_NE(document->settings(2), document->settings(0));

    StateBlock odd = sampleBlock();
    odd[2] = std::nanf("");
    document->setSettings({{0, shader(odd)}}, "odd");
    EXPECT_THROW(document->saveLook(0, folder_ / "odd.json"), Error);
    EXPECT_FALSE(exists(folder_ / "odd.json"));
}

}  // namespace
}  // namespace tavora::studio
