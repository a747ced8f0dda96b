
#include <QColorSpace>
#include <QImage>
#include <QTest>
#include <fstream>

#include <nlohmann/json.hpp>

#include "studio/app/commands.h"
#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

class CleanPicture : public WindowTest {
  protected:
    QImage rendered(QSize size) {
        RenderRequest request;
        request.scene = scene_;
        request.output = folder_ / "picture.png";
        request.width = size.width();
        request.height = size.height();
        request.samples = 16;
        request.maxSamples = 0;
        request.background = request_.background;
        request.shading = request_.shading;
        request.animation = request_.animation;
        render(request, report_);
        QImage read(QString::fromStdString(request.output));
        read.setColorSpace({});  // which the file tells and the window does not
        return read.convertToFormat(QImage::Format_RGBA8888);
    }
};

TEST_F(CleanPicture, IsWhatTheCommandLineRendersInAnyShape) {
    for (const bool camera : {true, false}) {
        if (!camera) {
            auto scene = nlohmann::json::parse(std::ifstream(scene_));
            scene["nodes"][2].erase("camera");
            scene.erase("cameras");
            std::ofstream(scene_) << scene;
        }
        for (const QSize size : {QSize(420, 300), QSize(330, 380), QSize(320, 500)}) {
            if (size.width() == 330) request_.background = Imath::V3d(0.125, 0.25, 0.375);
            if (size.width() == 320) request_.background.reset();
            start();
            window_->resize(window_->size() + size - view().size());
            EXPECT_TRUE(QTest::qWaitFor([&] { return view().size() == size; }));
            EXPECT_EQ(picture(), rendered(size)) << "camera: " << camera << size.width();
            const QImage checkers = view().grab().toImage();
            EXPECT_EQ(checkers.pixel(5, 5) == checkers.pixel(5, 15), size.width() != 320);
            EXPECT_EQ(checkers.pixel(5, 5), checkers.pixel(15, 15));
            kill();
        }
        request_ = EditRequest{};
        request_.shading.plugin = TAVORA_MODULE;
        request_.shading.looks = {{"", "comic"}};
    }
}

/// The light's level and the view are those of all of what plays.
TEST_F(CleanPicture, IsWhatTheCommandLineRendersAtAnyTime) {
    animate();
    for (const bool camera : {true, false}) {
        if (!camera) {
            auto scene = nlohmann::json::parse(std::ifstream(scene_));
            scene["nodes"][2].erase("camera");
            scene["nodes"][3].erase("extensions");
            scene.erase("cameras");
            std::ofstream(scene_) << scene;
        }
        request_.animation = {{"Slide"}, 0.75};
        start();
        const QSize size(520, 300);
        window_->resize(window_->size() + size - view().size());
        EXPECT_TRUE(QTest::qWaitFor([&] { return view().size() == size; }));
        const QImage asked = picture();
        EXPECT_EQ(asked, rendered(size)) << camera;
        window().session()->setTime(19 / 24.0);
        request_.animation.seconds = 19 / 24.0;
        EXPECT_EQ(picture(), rendered(size)) << camera;
        EXPECT_NE(picture(), asked);
        choosePlaying(1);  // all at once
        window().session()->setTime(0.5);
        request_.animation = {{"Slide", "Hide"}, 0.5};
        EXPECT_EQ(picture(), rendered(size)) << camera;
        choosePlaying(0);  // at rest
        request_.animation = {};
        EXPECT_EQ(picture(), rendered(size)) << camera;
        EXPECT_FALSE(isModified());
        kill();
    }
}

}  // namespace
}  // namespace tavora::studio::testing
