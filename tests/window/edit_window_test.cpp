#include "studio/window/edit_window.h"

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
#include <unistd.h>

#include "studio/edit/steps.h"
#include "studio/scene/settings/look.h"
#include "studio/window/look_thumbnails.h"
#include "studio/window/panel_place.h"
#include "studio/window/window_memory.h"
#include "tests/panels/settings_rig.h"
#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

using ::testing::EndsWith;

constexpr const char* kMarkers = "area.7";

/// A place in the picture that shows the surface, clear of its edges.
QPoint placeOf(EditWindow& window, std::ptrdiff_t surface) {
    auto& view = *window.findChild<PictureView*>("picture");
    for (int y = 20; y < view.height(); y += 10) {
        for (int x = 20; x < view.width(); x += 10) {
            if (window.session()->picture().surfaceAt(x, y) == surface) return {x, y};
        }
    }
    throw std::runtime_error("the surface is not in the picture");
}

using EditWindowTest = WindowTest;

TEST_F(EditWindowTest, AClickSelectsTheSurfaceThereAndADragTurnsTheView) {
    start();
    const QImage before = picture();
    for (const std::size_t surface : {1U, 0U}) {
        QTest::mouseClick(&view(), Qt::LeftButton, {},
                          placeOf(window(), static_cast<std::ptrdiff_t>(surface)));
        EXPECT_EQ(surfaces().selection(), std::vector<std::size_t>{surface});
    }
    drag(view(), 60);
    EXPECT_EQ(surfaces().current(), 0) << "a drag selects nothing";
    EXPECT_NE(picture(), before);
    trigger("resetView");
    EXPECT_EQ(picture(), before);
    EXPECT_FALSE(document().settings.isModified()) << "the view is nobody's setting";
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
        QTest::keyClick(&panel, Qt::Key_Escape);
    };
    inPanel({drags, redoes, cancels});
    EXPECT_EQ(state(), first) << "Cancel goes back to how the panel was met";
    trigger("undo");
    EXPECT_NE(state(), first) << "and can be undone itself";
}

/// Two hundred things that a user can do in a panel.
void editMuch(QWidget& panel) {
    const char* modes[] = {"Add", "Blend", "Delete"};
    for (int i = 0; i < 50; ++i) {
        for (auto* button : find(panel, "choice").findChildren<QPushButton*>()) {
            if (button->text() == modes[i % 3]) click(*button);
        }
        clickAt(find(panel, kMarkers), (i * 73) % 380 + 5);
        QTest::keyClick(&find(panel, "Force Color.percent"),
                        i % 4 == 3 ? Qt::Key_Up : Qt::Key_Down);
        drag(find(panel, "Shift.drag"), i % 2 == 0 ? 9 : -7);
        click(find(panel, "Use All Lights.check"));
    }
}

TEST_F(EditWindowTest, ManyEditsAreUndoneToTheByteAndSoByOneCancel) {
    start();
    const auto first = state();
    const auto confirm = [](QWidget& panel) { QTest::keyClick(&panel, Qt::Key_Return); };
    inPanel({editMuch, confirm});
    const auto last = state();
    ASSERT_NE(last, first);
    int steps = 0;
    for (; document().undo.canUndo(); ++steps)
        QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_GE(steps, 150) << "gestures were joined that are none";
    EXPECT_EQ(state(), first);
    while (document().undo.canRedo())
        trigger("redo");
    EXPECT_EQ(state(), last);

    trigger("save");
    inPanel({editMuch});
    EXPECT_EQ(state(), last);
}

TEST_F(EditWindowTest, RendersWhileZonesComeAndGo) {
    start();
    const auto confirm = [](QWidget& panel) { QTest::keyClick(&panel, Qt::Key_Return); };
    inPanel({editMuch, editMuch, confirm});
    const QImage edited = picture();
    trigger("save");
    kill();
    start();
    EXPECT_EQ(picture(), edited) << "what was rendered meanwhile left a trace";
}

TEST_F(EditWindowTest, EscEndsADragAndLeavesNothingToUndo) {
    // Values that no slider shows exactly.
    const auto look = folder_ / "odd.json";
    std::ofstream(look) << R"({"tavora": "look", "version": 1, "name": "odd", "description": "",
        "settings": {"zones": [{"position": 0}, {"position": 0.4234567, "opacity": 0.7654321},
                               {"position": 0.8111111}, {"position": 1}]}})";
    request_.shading.looks = {{{}, look.string()}};
    start();
    const auto first = state();
    const auto dragAndEscape = [&](QWidget& panel, const char* name) {
        QWidget& control = find(panel, name);
        QTest::mousePress(&control, Qt::LeftButton, {}, control.rect().center());
        for (const int distance : {-9, -20, -31})
            QTest::mouseMove(&control, control.rect().center() + QPoint(distance, 0));
        EXPECT_NE(state(), first) << name;
        QTest::keyClick(&control, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents();  // before the next step
    };
    const auto goesOn = [&](QWidget& panel) {
        EXPECT_EQ(state(), first);
        EXPECT_EQ(selectedZone(panel), 1);
        EXPECT_FALSE(document().undo.canUndo() || document().undo.canRedo());
    };
    inPanel({[&](QWidget& panel) {
                 selectZone(panel, 1);
                 dragAndEscape(panel, "Opacity.percent");
             },
             [&](QWidget& panel) {
                 goesOn(panel);
                 dragAndEscape(panel, "Scale.drag");
             },
             [&](QWidget& panel) {
                 goesOn(panel);
                 dragAndEscape(panel, "Position.percent");
             },
             [&](QWidget& panel) {
                 goesOn(panel);
                 QTest::keyClick(&panel, Qt::Key_Escape);
             }});
    EXPECT_FALSE(document().undo.canUndo());
}

TEST_F(EditWindowTest, ThePanelStaysWhereItIs) {
    start();
    // A window that is moved once it is shown ends up off by its frame.
    struct Moves : QObject {
        int afterShowing = 0;
        bool eventFilter(QObject* watched, QEvent* event) override {
            const auto* widget = qobject_cast<QWidget*>(watched);
            const bool frame = widget != nullptr && widget->isWindow() &&
                               widget->findChild<QWidget*>(kMarkers) != nullptr;
            if (frame && event->type() == QEvent::Move && widget->isVisible()) ++afterShowing;
            return false;
        }
    } moves;
    QPointer<QWidget> frame;
    QPoint place;
    const auto undoes = [&](QWidget& panel) {
        frame = panel.window();
        frame->move(70, 50);
        place = frame->pos();
        moves.afterShowing = 0;
        drag(find(panel, "Opacity.percent"), -40);
        find(panel, "Saturation.percent").setFocus();
        QTest::keyClick(&panel, Qt::Key_Z, Qt::ControlModifier);
    };
    const auto looks = [&](QWidget& panel) {
        EXPECT_EQ(panel.window(), frame) << "the same window";
        EXPECT_EQ(frame->pos(), place);
        EXPECT_EQ(panel.focusWidget(), &find(panel, "Saturation.percent"));
    };
    qApp->installEventFilter(&moves);
    inPanel({undoes, looks});
    EXPECT_TRUE(frame == nullptr || !frame->isVisible());
    inPanel({[&](QWidget& panel) { EXPECT_EQ(panel.window()->pos(), place); }});
    EXPECT_EQ(moves.afterShowing, 0);
}

TEST(PanelPlace, KeepsClearOfTheSurfacesAndThenOfTheWindow) {
    const QSize panel(547, 421);
    const auto place = [&](QRect screen, QRect window) {
        const QRect side(window.right() - 250, window.top() + 60, 240, window.height() / 2);
        const QRect shown(panelPlace(screen, window, side, panel), panel);
        EXPECT_TRUE(screen.contains(shown));
        EXPECT_FALSE(shown.intersects(side));
        return shown;
    };
    const QRect window(60, 200, 1240, 680);
    EXPECT_FALSE(place({0, 0, 1920, 1080}, window).intersects(window)) << "beside it";
    const QRect right = window.translated(560, 0);
    EXPECT_FALSE(place({0, 0, 1920, 1080}, right).intersects(right));
    place({0, 0, 1024, 768}, {0, 0, 1024, 740});
    place({0, 0, 800, 500}, {0, 0, 800, 500});
    place({1920, 0, 1280, 720}, {1920, 0, 1280, 700});
}

TEST_F(EditWindowTest, ThePanelOfASceneOpenedLaterHasItsLightsAndShowsTheKeys) {
    start();
    ASSERT_TRUE(window().open(scene_));
    inPanel({[&](QWidget& panel) {
        const auto& list = *find(panel, "Lights.list").findChild<QTableView*>();
        EXPECT_GT(list.model()->rowCount(), 1) << "more than the ambient light";
        QTest::keyClick(&panel, Qt::Key_F1);
    }});
    const auto* keys = window().findChild<QDialog*>("keysWindow");
    ASSERT_NE(keys, nullptr);
    EXPECT_TRUE(keys->isVisible());
}

TEST_F(EditWindowTest, ThumbnailsShowWhatChoosingALookGives) {
    start();
    picture();
    std::map<QString, QImage> pictures;
    LookThumbnails thumbnails(*window().session());
    QObject::connect(&thumbnails, &LookThumbnails::ready, &window(),
                     [&](const QString& look, const QImage& shown) { pictures[look] = shown; });
    const std::size_t looks = shippedLooks().size();
    const auto all = [&] { return pictures.size() == looks; };
    thumbnails.renderFor({1});
    ASSERT_TRUE(QTest::qWaitFor(all, 30000));
    const QImage promised = pictures["noir"];
    EXPECT_NE(promised, pictures["comic"]);

    document().undo.push(lookStep(document().settings, "noir", {1}));
    window().session()->turn(0, 0);
    pictures.clear();
    thumbnails.renderFor({});
    ASSERT_TRUE(QTest::qWaitFor(all, 30000)) << "settings changed";
    EXPECT_EQ(pictures["comic"], promised) << "what is shown, when no surface is chosen";

    window().session()->turn(0.3, 0);
    pictures.clear();
    thumbnails.renderFor({});
    ASSERT_TRUE(QTest::qWaitFor(all, 30000)) << "the view changed";
    EXPECT_NE(pictures["comic"], promised);
}

TEST_F(EditWindowTest, AnotherSurfaceIsChosenUnderThePanel) {
    start();
    const auto first = state();
    const auto goOn = [&](QWidget& panel) {
        drag(find(panel, "Opacity.percent"), -20);
        surfaces().setCurrentRow(1);
    };
    const auto cancel = [&](QWidget& panel) {
        EXPECT_EQ(window().panel().surface(), 1U);
        drag(find(panel, "Opacity.percent"), -30);
        QTest::keyClick(&panel, Qt::Key_Escape);
    };
    inPanel({goOn, cancel});
    EXPECT_NE(state()[0], first[0]) << "going on kept the changes";
    EXPECT_EQ(state()[1], first[1]);
}

TEST_F(EditWindowTest, TheSavedPictureShowsWhileAKeyIsHeld) {
    start();
    const QImage saved = picture();
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    const QImage edited = picture();
    ASSERT_NE(edited, saved);
    QTest::keyPress(&view(), Qt::Key_C);
    EXPECT_EQ(picture(), saved);
    QTest::keyRelease(&view(), Qt::Key_C);
    EXPECT_EQ(picture(), edited);
}

TEST_F(EditWindowTest, ComesBackWhereItWasInTheColoursChosen) {
    const auto colors = [this] { return window().findChild<QMenu*>("colors")->actions(); };
    start();
    colors().last()->trigger();
    EXPECT_LT(QApplication::palette().window().color().lightness(), 100) << "not dark";
    window().resize(700, 420);
    window().close();
    QApplication::setPalette({});
    start();
    EXPECT_TRUE(colors().last()->isChecked());
    EXPECT_LT(QApplication::palette().window().color().lightness(), 100) << "forgotten";
    EXPECT_TRUE(WindowMemory().restore(window()));
    EXPECT_EQ(window().size(), QSize(700, 420));
    colors().first()->trigger();
}

TEST_F(EditWindowTest, CopiesAndAppliesLooksToWhatIsSelected) {
    start();
    surfaces().setCurrentRow(0);
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    trigger("copy");
    surfaces().setCurrentRow(1);
    trigger("paste");
    EXPECT_EQ(state()[1], state()[0]);

    const auto look = folder_ / "half.json";
    std::ofstream(look) << R"({"tavora": "look", "version": 1, "name": "half",
                               "description": "", "settings": {"edgeCoverage": 0.5}})";
    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(QString::fromStdString(look))});
    QDragEnterEvent enter({9, 9}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    QApplication::sendEvent(&window(), &enter);
    QDropEvent drop({9, 9}, Qt::CopyAction, &dropped, Qt::LeftButton, {});
    QApplication::sendEvent(&window(), &drop);
    EXPECT_TRUE(state()[1]->enabled);
    EXPECT_FALSE(state()[0]->enabled) << "only the selected surface gets it";
    trigger("undo");
    EXPECT_EQ(state()[1], state()[0]);
}

TEST_F(EditWindowTest, AFileThatOthersChangedIsOverwrittenOnlyWhenAsked) {
    start();
    std::ifstream original(scene_);
    const std::string text{std::istreambuf_iterator<char>(original), {}};
    const auto change = [&] {
        std::ofstream(scene_) << text << "\n";
        surfaces().item(0)->setCheckState(Qt::Unchecked);
    };
    change();
    answer(QMessageBox::Cancel);
    trigger("save");
    EXPECT_TRUE(document().settings.isModified());
    EXPECT_EQ(asDefault_, QMessageBox::Save) << "which asks for another name";
    answer(QMessageBox::Discard);
    trigger("save");
    EXPECT_FALSE(document().settings.isModified());
    EXPECT_THAT(window().statusBar()->currentMessage().toStdString(), EndsWith("scene.gltf"));

    change();
    answer(QMessageBox::Reset);
    trigger("save");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !document().settings.isModified(); }));
    EXPECT_TRUE(surfaces().item(0)->checkState() == Qt::Checked) << "as the file has it";
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    trigger("save");
    EXPECT_FALSE(document().settings.isModified()) << "nothing is asked any more";
}

TEST_F(EditWindowTest, AFileThatMayNotBeWrittenCanBeSavedElsewhere) {
    start();
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    using std::filesystem::perms;
    std::filesystem::permissions(folder_.path(), perms(0755));
    std::filesystem::permissions(scene_, perms(0444));
    const bool root = ::geteuid() == 0;  // who may write anything
    constexpr uid_t kNobody = 65534;
    ASSERT_TRUE(!root || ::seteuid(kNobody) == 0);
    answer(QMessageBox::Cancel);
    trigger("save");
    ASSERT_TRUE(!root || ::seteuid(0) == 0);
    EXPECT_EQ(asDefault_, QMessageBox::Save);
    EXPECT_TRUE(document().settings.isModified());
}

TEST_F(EditWindowTest, UnsavedWorkIsNeverLostUnasked) {
    start();
    surfaces().item(1)->setCheckState(Qt::Unchecked);
    answer(QMessageBox::Cancel);
    EXPECT_FALSE(window().close());
    EXPECT_TRUE(document().settings.isModified());

    // The file vanishes with its folder: a dialog, and the work stays.
    const auto elsewhere = folder_ / "gone";
    std::filesystem::create_directory(elsewhere);
    trigger("save");
    EXPECT_FALSE(document().settings.isModified());
    std::filesystem::remove(scene_);
    surfaces().item(1)->setCheckState(Qt::Checked);
    answer(QMessageBox::Ok);
    trigger("save");
    EXPECT_TRUE(document().settings.isModified());
    answer(QMessageBox::Discard);
    EXPECT_TRUE(window().close());
}

TEST_F(EditWindowTest, AKilledSessionsWorkIsOfferedAtTheNextStart) {
    start();
    surfaces().item(0)->setCheckState(Qt::Unchecked);
    const auto work = state();
    window().keepSafe();
    kill();

    answer(QMessageBox::Cancel);
    start();
    EXPECT_TRUE(QTest::qWaitFor(answered()));
    EXPECT_FALSE(document().settings.isModified());
    ASSERT_TRUE(window().close());
    answer(QMessageBox::Yes);
    start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return document().settings.isModified(); }));
    EXPECT_EQ(state(), work);
    trigger("save");
    kill();
    start();
    QTest::qWait(20);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "nothing is left to offer";
    EXPECT_EQ(state(), work);
}

}  // namespace
}  // namespace tavora::studio::testing
