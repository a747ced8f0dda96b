#include "studio/window/edit_window.h"

#include <QAction>
#include <QDropEvent>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <fstream>
#include <gmock/gmock.h>
#include <map>

#include "studio/edit/undo_steps.h"
#include "studio/scene/settings/look.h"
#include "studio/window/look_thumbnails.h"
#include "studio/window/panel_position.h"
#include "studio/window/window_memory.h"
#include "tests/files/small_disk.h"
#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

using ::testing::EndsWith;
namespace fs = std::filesystem;

void confirm(QWidget& panel) {
    QTest::keyClick(&panel, Qt::Key_Return);
}
void escape(QWidget& panel) {
    QTest::keyClick(&panel, Qt::Key_Escape);
}

class EditWindowTest : public WindowTest {
  protected:
    /// A place in the picture that shows the surface, clear of its edges.
    QPoint placeOf(std::ptrdiff_t surface) {
        for (int y = 20; y < view().height(); y += 10)
            for (int x = 20; x < view().width(); x += 10)
                if (window().session()->picture().surfaceAt(x, y) == surface) return {x, y};
        throw std::runtime_error("the surface is not in the picture");
    }
    int undoAll() {
        int steps = 0;
        for (; document().undo.canUndo(); ++steps)
            QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
        return steps;
    }
    std::string status() { return window().statusBar()->currentMessage().toStdString(); }
    std::string look(const char* name, const std::string& settings) {
        const fs::path file = folder_ / (std::string(name) + ".json");
        putBytes(file, std::string(R"({"tavora": "look", "version": 1, "name": ")") + name +
                           R"(", "description": "", "settings": )" + settings + "}");
        return file;
    }
};

TEST_F(EditWindowTest, AClickSelectsADragTurnsAndAKeyHeldShowsWhatIsSaved) {
    start();
    const QImage before = picture();
    for (const std::size_t surface : {1U, 0U}) {
        QTest::mouseClick(&view(), Qt::LeftButton, {},
                          placeOf(static_cast<std::ptrdiff_t>(surface)));
        EXPECT_EQ(surfaces().selection(), std::vector<std::size_t>{surface});
    }
    drag(view(), 60);
    EXPECT_EQ(surfaces().current(), 0) << "a drag selects nothing";
    const QImage turned = picture();
    EXPECT_NE(turned, before);
    action("resetView").trigger();
    EXPECT_EQ(picture(), before);
    drag(view(), 60, Qt::ShiftModifier);
    EXPECT_TRUE(picture() != turned && picture() != before) << "that moves it";
    EXPECT_FALSE(isModified()) << "the view is nobody's setting";
    const QImage saved = picture();
    check(0, false);
    const QImage edited = picture();
    ASSERT_NE(edited, saved);
    QTest::keyPress(&view(), Qt::Key_C);
    EXPECT_EQ(picture(), saved);
    EXPECT_EQ(status(), "As saved");
    QTest::keyRelease(&view(), Qt::Key_C);
    EXPECT_EQ(picture(), edited);
    EXPECT_EQ(status(), "");
}

TEST_F(EditWindowTest, ThePictureFollowsThePanelAndUndoWorksUnderIt) {
    start();
    const QImage before = picture();
    const auto first = state();
    QImage edited;
    const auto drags = [&](QWidget& panel) {
        drag(find(panel, "Opacity.percent"), -40);
        edited = picture();
        EXPECT_NE(edited, before);
        EXPECT_TRUE(window().isWindowModified());
        QTest::keyClick(&panel, Qt::Key_Z, Qt::ControlModifier);
    };
    const auto redoes = [&](QWidget& panel) {
        EXPECT_EQ(state(), first) << "the whole drag was one step";
        EXPECT_EQ(picture(), before);
        EXPECT_FALSE(window().isWindowModified());
        QTest::keyClick(&panel, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    };
    const auto cancels = [&](QWidget& panel) {
        EXPECT_EQ(picture(), edited);
        auto& field = find(panel, "Saturation.percent");
        click(field);
        QTest::keyClicks(&field, "7");
        QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_TRUE(panel.isVisible()) << "what is typed is taken back first";
        for (int times = 0; times < 2; ++times)
            escape(field.hasFocus() ? field : panel);
    };
    inPanel({drags, redoes, cancels});
    EXPECT_EQ(state(), first) << "Cancel goes back to how the panel was met";
    action("undo").trigger();
    EXPECT_NE(state(), first) << "and can be undone itself";
    EXPECT_TRUE(action("redo").isEnabled());
    action("redo").trigger();
    EXPECT_FALSE(action("redo").isEnabled());
}

TEST_F(EditWindowTest, DragsKeysAndSpellsOfTheWheelAreStepsOfTheirOwn) {
    start();
    inPanel({[](QWidget& panel) {
        auto& field = find(panel, "Saturation.percent");
        drag(field, -40);
        field.setFocus();
        for (int times = 0; times < 2; ++times)
            QTest::keyClick(&field, Qt::Key_Down);
        const auto turn = [&field] {
            QWheelEvent notch({9, 9}, field.mapToGlobal(QPointF(9, 9)), {}, {0, -120}, Qt::NoButton,
                              {}, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&field, &notch);
        };
        turn();
        turn();
        QTest::keyClick(&field, Qt::Key_Down);
        turn();
        QTest::qWait(650);  // a pause that ends the spell
        turn();
        confirm(panel);
    }});
    EXPECT_EQ(undoAll(), 7);
}

void editMuch(QWidget& panel) {
    const auto modes = find(panel, "choice").findChildren<QPushButton*>();
    for (int i = 0; i < 50; ++i) {
        click(*modes[i % 3 == 2 ? 3 : i % 3]);
        clickAt(find(panel, "area.7"), (i * 73) % 380 + 5);
        QTest::keyClick(&find(panel, "Force Color.percent"),
                        i % 4 == 3 ? Qt::Key_Up : Qt::Key_Down);
        drag(find(panel, "Shift.drag"), i % 2 == 0 ? 9 : -7);
        click(find(panel, "Use All Lights.check"));
    }
}

TEST_F(EditWindowTest, ManyEditsAreUndoneToTheByteAndSoByOneCancel) {
    start();
    const auto first = state();
    inPanel({editMuch, confirm});
    const auto last = state();
    ASSERT_NE(last, first);
    EXPECT_GE(undoAll(), 150) << "gestures were joined that are none";
    EXPECT_EQ(state(), first);
    while (document().undo.canRedo())
        action("redo").trigger();
    EXPECT_EQ(state(), last);

    action("save").trigger();
    inPanel({editMuch});
    EXPECT_EQ(state(), last);
    const QImage edited = picture();
    kill();
    start();
    EXPECT_EQ(picture(), edited) << "what was rendered meanwhile left a trace";
}

TEST_F(EditWindowTest, EscEndsADragAndLeavesNothingToUndo) {
    // Values that no slider shows exactly.
    request_.shading.looks = {
        {{}, look("odd", R"({"zones": [{"position": 0}, {"position": 0.4234567,
            "opacity": 0.7654321}, {"position": 0.8111111}, {"position": 1}]})")}};
    start();
    const auto first = state();
    std::vector<std::function<void(QWidget&)>> steps{[](QWidget& panel) { selectZone(panel, 1); }};
    for (const char* name : {"Opacity.percent", "Scale.drag", "Position.percent"}) {
        steps.emplace_back([&, name](QWidget& panel) {
            EXPECT_EQ(state(), first);
            EXPECT_EQ(selectedZone(panel), 1);
            EXPECT_FALSE(document().undo.canUndo() || document().undo.canRedo());
            QWidget& control = find(panel, name);
            QTest::mousePress(&control, Qt::LeftButton, {}, control.rect().center());
            for (const int distance : {-9, -20, -31})
                QTest::mouseMove(&control, control.rect().center() + QPoint(distance, 0));
            EXPECT_NE(state(), first) << name;
            escape(control);
            QCoreApplication::sendPostedEvents();  // before the next step
        });
    }
    steps.emplace_back(escape);
    inPanel(steps);
    EXPECT_EQ(state(), first);
    EXPECT_FALSE(document().undo.canUndo());
}

TEST_F(EditWindowTest, ThePanelOfASceneOpenedLaterStaysWhereItIsAndHasItsLights) {
    start();
    ASSERT_TRUE(window().open(scene_));
    QPointer<QWidget> frame;
    QPoint place;
    inPanel({[&](QWidget& panel) {
                 frame = panel.window();
                 frame->move(70, 50);
                 place = frame->pos();
                 drag(find(panel, "Opacity.percent"), -40);
                 find(panel, "Saturation.percent").setFocus();
                 QTest::keyClick(&panel, Qt::Key_Z, Qt::ControlModifier);
             },
             [&](QWidget& panel) {
                 EXPECT_EQ(panel.window(), frame) << "the same window";
                 EXPECT_EQ(frame->pos(), place);
                 EXPECT_EQ(panel.focusWidget(), &find(panel, "Saturation.percent"));
             }});
    EXPECT_TRUE(frame == nullptr || !frame->isVisible());
    inPanel({[&](QWidget& panel) {
        EXPECT_EQ(panel.window()->pos(), place);
        const auto& list = *find(panel, "Lights.list").findChild<QTableView*>();
        EXPECT_GT(list.model()->rowCount(), 1) << "more than the ambient light";
        QTest::keyClick(&panel, Qt::Key_F1);
    }});
    const auto* keys = window().findChild<QDialog*>("keysWindow");
    EXPECT_TRUE(keys != nullptr && keys->isVisible());
}

TEST(PanelPlace, KeepsClearOfTheSurfacesAndThenOfTheWindow) {
    const auto coversWindow = [](QRect screen, QRect window) {
        const QRect side(window.right() - 250, window.top() + 60, 240, window.height() / 2);
        const QSize panel(547, 421);
        const QRect shown(panelPosition(screen, window, side, panel), panel);
        EXPECT_TRUE(screen.contains(shown));
        EXPECT_FALSE(shown.intersects(side));
        return shown.intersects(window);
    };
    EXPECT_FALSE(coversWindow({0, 0, 1920, 1080}, {60, 200, 1240, 680})) << "beside it";
    EXPECT_FALSE(coversWindow({0, 0, 1920, 1080}, {620, 200, 1240, 680}));
    coversWindow({0, 0, 1024, 768}, {0, 0, 1024, 740});
    coversWindow({0, 0, 800, 500}, {0, 0, 800, 500});
    coversWindow({1920, 0, 1280, 720}, {1920, 0, 1280, 700});
}

TEST_F(EditWindowTest, ThumbnailsShowWhatChoosingALookGives) {
    start();
    picture();
    std::map<QString, QImage> pictures;
    LookThumbnails thumbnails(*window().session());
    QObject::connect(&thumbnails, &LookThumbnails::ready, &window(),
                     [&](const QString& look, const QImage& shown) { pictures[look] = shown; });
    const std::size_t looks = shippedLooks().size();
    const auto render = [&](const std::vector<std::size_t>& surfaces) {
        pictures.clear();
        thumbnails.renderFor(surfaces);
        return QTest::qWaitFor([&] { return pictures.size() == looks; }, 30000);
    };
    ASSERT_TRUE(render({1}));
    const QImage promised = pictures["noir"];
    EXPECT_NE(promised, pictures["comic"]);
    document().undo.push(lookStep(document().settings, "noir", {1}));
    window().session()->turn(0, 0);
    ASSERT_TRUE(render({})) << "settings changed";
    EXPECT_EQ(pictures["comic"], promised) << "what is shown, when no surface is chosen";
    window().session()->turn(0.3, 0);
    ASSERT_TRUE(render({})) << "the view changed";
    EXPECT_NE(pictures["comic"], promised);
}

TEST_F(EditWindowTest, AnotherSurfaceIsChosenUnderThePanel) {
    start();
    const auto first = state();
    const auto dragAndGoTo = [&](int surface) {
        return [&, surface](QWidget& panel) {
            drag(find(panel, "Opacity.percent"), -20);
            surfaces().setCurrentRow(surface);
        };
    };
    inPanel({dragAndGoTo(1), dragAndGoTo(0),
             [&](QWidget&) {
                 EXPECT_EQ(window().panel().surface(), 0U);
                 surfaces().setCurrentRow(1);
             },
             [&](QWidget& panel) {
                 EXPECT_EQ(window().panel().surface(), 1U);
                 drag(find(panel, "Opacity.percent"), -30);
                 escape(panel);
             }});
    EXPECT_NE(state()[0], first[0]) << "going on kept the changes";
    undoAll();
    EXPECT_EQ(state(), first);
}

TEST_F(EditWindowTest, ComesBackWhereItWasInTheColoursChosen) {
    const auto colors = [this] { return window().findChild<QMenu*>("colors")->actions(); };
    const auto isDark = [] { return QApplication::palette().window().color().lightness() < 100; };
    start();
    colors().last()->trigger();
    EXPECT_TRUE(isDark());
    window().resize(700, 420);
    window().close();
    QApplication::setPalette({});
    start();
    EXPECT_TRUE(isDark() && colors().last()->isChecked()) << "forgotten";
    EXPECT_TRUE(WindowMemory().restore(window()));
    EXPECT_EQ(window().size(), QSize(700, 420));
    colors().first()->trigger();
}

TEST_F(EditWindowTest, CopiesAndAppliesLooksToWhatIsSelected) {
    start();
    surfaces().setCurrentRow(0);
    check(0, false);
    action("copy").trigger();
    surfaces().setCurrentRow(1);
    action("paste").trigger();
    EXPECT_EQ(state()[1], state()[0]);

    QMimeData dropped;
    dropped.setUrls(
        {QUrl::fromLocalFile(QString::fromStdString(look("half", R"({"edgeCoverage": 0.5})")))});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    QApplication::sendEvent(&window(), &enter);
    QDropEvent drop({9, 9}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    QApplication::sendEvent(&window(), &drop);
    EXPECT_TRUE(state()[1]->enabled);
    EXPECT_FALSE(state()[0]->enabled) << "only the selected surface gets it";
    EXPECT_EQ(action("undo").text(), "&Undo look half on Glass.Pane");
    EXPECT_TRUE(surfaces().item(1)->font().bold()) << "it differs from the file";
    action("save").trigger();
    EXPECT_FALSE(surfaces().item(1)->font().bold());
    action("undo").trigger();
    EXPECT_EQ(state()[1], state()[0]);
}

TEST_F(EditWindowTest, AFileThatOthersChangedIsOverwrittenOnlyWhenAsked) {
    start();
    const std::string text = bytesOf(scene_);
    const auto saveChanged = [&](int button, int surface, bool on) {
        putBytes(scene_, text + "\n");
        check(surface, on);
        window().writeRecoveryNow();
        answer({button});
        action("save").trigger();
    };
    saveChanged(QMessageBox::Cancel, 0, false);
    EXPECT_TRUE(isModified());
    EXPECT_EQ(asDefault_, QMessageBox::Save) << "which asks for another name";
    saveChanged(QMessageBox::Discard, 1, false);
    EXPECT_FALSE(isModified());
    EXPECT_THAT(status(), EndsWith("scene.gltf"));

    saveChanged(QMessageBox::Reset, 1, true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isModified(); }));
    EXPECT_TRUE(surfaces().item(0)->checkState() == Qt::Checked) << "as the file has it";
    EXPECT_TRUE(fs::is_empty(folder_ / "state/tavora/recovery")) << "the work was given up";
}

TEST_F(EditWindowTest, UnsavedWorkIsNeverLostUnasked) {
    start();
    check(1, false);
    answer({QMessageBox::Cancel});
    EXPECT_FALSE(window().close());
    {
        const SmallDisk full(64);
        answer({QMessageBox::Save, QMessageBox::Cancel});
        EXPECT_FALSE(window().close()) << "saved it could not be";
        EXPECT_EQ(asDefault_, QMessageBox::Save) << "elsewhere";
    }
    EXPECT_TRUE(isModified());
    action("save").trigger();
    EXPECT_FALSE(isModified());
    fs::remove(scene_);
    check(1, true);
    answer({QMessageBox::Ok});
    action("save").trigger();
    EXPECT_TRUE(isModified());
    answer({QMessageBox::Discard});
    EXPECT_TRUE(window().close());
}

TEST_F(EditWindowTest, AKilledSessionsWorkIsOfferedAtTheNextStart) {
    start();
    check(1, false);
    const auto kept = [&] { return fs::exists(folder_ / "state/tavora/recovery"); };
    EXPECT_TRUE(QTest::qWaitFor(kept)) << "unsaved work is written by itself";
    check(0, false);
    const auto work = state();
    window().writeRecoveryNow();
    kill();

    answer({QMessageBox::Cancel});
    start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return answers_.empty(); }));
    EXPECT_FALSE(isModified());
    ASSERT_TRUE(window().close());
    answer({QMessageBox::Yes});
    start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return isModified(); }));
    EXPECT_EQ(state(), work);
    action("save").trigger();
    kill();
    start();
    QTest::qWait(20);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "nothing is left to offer";
    EXPECT_EQ(state(), work);
}

}  // namespace
}  // namespace tavora::studio::testing
