// The picture of the window against the one that the command line renders.

#include <QColorSpace>
#include <QImage>
#include <QTest>
#include <fstream>
#include <variant>

#include <nlohmann/json.hpp>

#include "studio/app/command_line.h"
#include "studio/app/commands.h"
#include "tests/window/window_rig.h"

namespace tavora::studio::testing {
namespace {

template <class Asked>
Asked parsed(std::vector<std::string> line) {
    std::vector<char*> words;
    for (std::string& word : line)
        words.push_back(word.data());
    return std::get<Asked>(parseCommandLine(static_cast<int>(words.size()), words.data()));
}

class CleanPicture : public WindowTest {
  protected:
    /// The window of `tavora edit` with these options, its picture of this size.
    QImage edited(const std::vector<std::string>& options, QSize size) {
        std::vector<std::string> line{"tavora", "edit", scene_.string(), "--plugin", TAVORA_MODULE};
        line.insert(line.end(), options.begin(), options.end());
        request_ = parsed<EditRequest>(line);
        start();
        window_->resize(window_->size() + size - view().size());
        EXPECT_TRUE(QTest::qWaitFor([&] { return view().size() == size; }));
        return picture();
    }

    QImage rendered(const std::vector<std::string>& options, QSize size) {
        const std::string file = folder_ / "picture.png";
        std::vector<std::string> line{
            "tavora",
            "render",
            scene_.string(),
            "-o",
            file,
            "-s",
            "16",
            "--quiet",
            "-r",
            QString("%1x%2").arg(size.width()).arg(size.height()).toStdString(),
            "--plugin",
            TAVORA_MODULE};
        line.insert(line.end(), options.begin(), options.end());
        render(parsed<RenderRequest>(line), report_);
        QImage read(QString::fromStdString(file));
        read.setColorSpace({});  // which the file tells and the window does not
        return read.convertToFormat(QImage::Format_RGBA8888);
    }

    void leaveOut(const char* what) {
        auto scene = nlohmann::json::parse(std::ifstream(scene_));
        for (nlohmann::json& node : scene["nodes"])
            node.erase(what);
        scene.erase(std::string(what) + "s");
        std::ofstream(scene_) << scene;
    }
};

TEST_F(CleanPicture, IsWhatTheCommandLineRendersInAnyShape) {
    const std::vector<std::string> options[] = {
        {}, {"--background", "#204060"}, {"--background", "transparent", "--look", "comic"}};
    for (const bool camera : {true, false}) {
        if (!camera) leaveOut("camera");
        int next = 0;
        for (const QSize size : {QSize(420, 300), QSize(330, 380), QSize(320, 500)}) {
            const auto& chosen = options[next++ % 3];
            const QImage shown = edited(chosen, size);
            EXPECT_EQ(shown, rendered(chosen, size))
                << "camera: " << camera << ", " << size.width();
            kill();
        }
    }
}

}  // namespace
}  // namespace tavora::studio::testing
