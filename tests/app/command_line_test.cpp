
#include "studio/app/command_line.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

#include "studio/app/frames.h"
#include "studio/app/option_values.h"
#include "studio/app/picture_area.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

using testing::ElementsAre;

template <class Asked>
Asked parsed(const std::string& line) {
    std::istringstream words("tavora " + line);
    std::vector<std::string> texts{std::istream_iterator<std::string>(words), {}};
    std::vector<char*> arguments;
    for (std::string& text : texts)
        arguments.push_back(text.data());
    return std::get<Asked>(parseCommandLine(static_cast<int>(arguments.size()), arguments.data()));
}

TEST(CommandLine, TakesEachOptionToItsPlace) {
    const auto render = parsed<RenderRequest>(
        "--log-file early -v render in.glb -v -o out.exr -r 30x20 --scale 50 --crop 0,0,1,0.5 "
        "-s 2..8 --filter tent --depth half --format exr -c 1 --background transparent "
        "--ambient 0.25 --exposure 3 --falloff physical --light-radius A=1 --light-radius 2 "
        "--light-angle 90 --no-shadows B --look noir --look X=comic --set X.edgeEnable=true "
        "--plugin p.so --no-shader=C --no-self-shadow --no-cast-shadows=D "
        "--no-received-shadows=E --no-normal-map=F --no-normal-map=G --progress bar "
        "--max-memory 2GB --allow-outside");
    EXPECT_TRUE(render.reading.memory == 2ULL << 30 && render.reading.outside);
    EXPECT_EQ(std::tie(render.scene, render.output, render.camera, render.shading.plugin),
              std::tuple("in.glb", "out.exr", "1", "p.so"));
    EXPECT_EQ(std::tie(render.width, render.height, render.samples, render.maxSamples),
              std::tuple(30, 20, 2, 8));
    EXPECT_EQ(std::tie(render.filter, render.depth, render.format, render.progress),
              std::tuple(PixelFilter::Tent, PictureDepth::Half, PictureFormat::Kind::Exr,
                         ProgressKind::Bar));
    EXPECT_EQ(std::tie(render.scale, render.cropFractions, render.lighting.ambient,
                       render.lighting.exposure, render.lighting.falloff),
              std::tuple(0.5, CropFractions{0, 0, 1, 0.5}, Imath::V3d(0.25), 3, true));
    EXPECT_FALSE(render.cropPixels || render.background);
    EXPECT_EQ(render.lighting.radii.at(0).lights, "A");
    EXPECT_EQ(render.lighting.radii.at(1).size, 2);
    EXPECT_NEAR(render.lighting.angles.at(0).size, 1.5708, 1e-4);
    EXPECT_EQ(render.shading.looks.at(1).surfaces, "X");
    EXPECT_EQ(render.shading.changes.at(0).setting, "edgeEnable");
    EXPECT_EQ(
        (std::vector{render.lighting.withoutShadows, render.shading.plain, render.withoutSelfShadow,
                     render.withoutCastShadows, render.withoutReceivedShadows,
                     render.withoutNormalMap}),
        (std::vector<std::vector<std::string>>{{"B"}, {"C"}, {"*"}, {"D"}, {"E"}, {"F", "G"}}));
    EXPECT_EQ(std::tie(render.report.verbosity, render.report.logFile), std::tuple(2, "early"));
    const auto panel = parsed<PanelRequest>(
        "--quiet panel in.glb -o p.png --surface S --tab 3 --scale 200% --theme dark");
    EXPECT_EQ(std::tie(panel.surface, panel.tab, panel.scale, panel.theme, panel.report.quiet),
              std::tuple("S", 3, 2, Theme::Dark, true));
    EXPECT_THAT(parsed<SettingsRequest>("settings in.glb --surface A --surface B").surfaces,
                ElementsAre("A", "B"));
}

TEST(CommandLine, PutsTheLastOnTheLineBeforeTheEnvironment) {
    setenv("TAVORA_THREADS", "3", 1);
    EXPECT_EQ(parsed<EditRequest>("edit").threads, 3);
    EXPECT_EQ(parsed<EditRequest>("edit -t 1 -t 2").threads, 2);
    setenv("TAVORA_THREADS", "many", 1);
    EXPECT_EQ(parsed<EditRequest>("edit -t 2").threads, 2);
    parsed<LooksRequest>("looks");  // which has no threads
    unsetenv("TAVORA_THREADS");
}

template <class Reader>
void expectRefused(const Reader& read, std::initializer_list<const char*> texts) {
    for (const char* text : texts)
        EXPECT_THROW(read(text), Error) << text;
}

TEST(OptionValues, AreReadWholeAndInTheirRange) {
    const auto whole = [](const char* text) { return wholeNumber(text, 1, 64); };
    EXPECT_EQ(whole("64"), 64);
    expectRefused(whole, {"", "0", "65", "1.5", "1 ", " 1", "+1", "x", "99999999999"});
    EXPECT_EQ(percentage("50%"), 0.5);
    EXPECT_EQ(percentage("12.5"), 0.125);
    expectRefused(percentage, {"nan", "0", "%"});
    EXPECT_EQ(resolution("1920x1080"), std::pair(1920, 1080));
    expectRefused(resolution, {"1920", "x", "1920x", "1x-1", "1x1x1", "99999x1", "1X1"});
    EXPECT_EQ(sampleCounts("16"), std::pair(16, 0));
    EXPECT_EQ(sampleCounts("4..64"), std::pair(4, 64));
    EXPECT_EQ(sampleCounts("8..8"), std::pair(8, 0));
    expectRefused(sampleCounts,
                  {"", "0", "4..", "..4", "64..4", "4...64", "1..70000", "4..x", "65536"});
    EXPECT_EQ(cropPixels("1,2,3,4"), (PixelBox{1, 2, 3, 4}));
    expectRefused(cropPixels, {"1,2,3", "1,2,1,4", "3,2,4,2", "-1,0,1,1", "1,2,3,4,5", "0,0,.5,1"});
    EXPECT_EQ(cropFractions("0,0.25,1,0.5"), (CropFractions{0, 0.25, 1, 0.5}));
    expectRefused(cropFractions, {"0,0,1,1.5", "0,0.5,1,0.5", "nan,0,1,1", "0,0,1"});
    EXPECT_EQ(color("#ff0080"), Imath::V3d(1, 0, 128 / 255.0));
    EXPECT_EQ(color("0.1,0.2,1"), Imath::V3d(0.1, 0.2, 1));
    EXPECT_EQ(background("0.25"), Imath::V3d(0.25));
    expectRefused(color, {"", "#fff", "#gggggg", "#ff00800", "1,1", "255,0,0", "red", "-1"});
    expectRefused(lookChoice, {"=noir", "Body="});
    expectRefused(settingChange,
                  {"edgeEnable=1", "Body.edgeEnable", ".edgeEnable=1", "Body.=1", ""});
    EXPECT_EQ(settingChange("a.zones[0].b.zoneList[2].sat=0").surfaces, "a.zones[0].b");
}

TEST(PictureArea, CropsOfSharedEdgesMeetAndPicturesStayWithinReason) {
    RenderRequest request;
    request.width = 101;
    request.height = 33;
    int covered = 0;
    for (int i = 0; i < 7; ++i) {
        request.cropFractions = CropFractions{i / 7.0, 0, (i + 1) / 7.0, 1};
        const PixelBox box = *pictureArea(request).crop;
        EXPECT_EQ(box.left, covered);
        EXPECT_EQ(box.height(), 33);
        covered = box.right;
    }
    EXPECT_EQ(covered, 101);
    for (int i = 1; i <= 7; ++i) {
        request.tile = TileNumber{i, 7};
        EXPECT_EQ(pictureArea(request).crop->height() / 2, 2) << "33 rows in sevenths are 4 or 5";
    }
    request = {};
    request.scale = 100;
    EXPECT_THROW(pictureArea(request), Error);
}

TEST(Frames, AreNumberedInTheirOrderEachOnce) {
    EXPECT_EQ(frameNumbers("3-1,2,8-4x2,-3--1x2"), (std::vector<int>{3, 2, 1, 8, 6, 4, -3, -1}));
    EXPECT_EQ(frameText({1, 2, 3, 7, 9, 10}), "1-3, 7, 9-10");
    EXPECT_EQ(FrameName("a/#.png").of(12345), "a/12345.png");
    EXPECT_EQ(FrameName("####").of(-7), "-0007");
    EXPECT_EQ(FrameName("100%%_%03d").of(7), "100%_007");
}

}  // namespace
}  // namespace tavora::studio
