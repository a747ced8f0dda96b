// What arrives from a line and from the environment.

#include "studio/app/command_line.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>

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
        "--no-received-shadows=E --no-normal-map=F --no-normal-map=G --progress bar");
    EXPECT_EQ(std::tie(render.scene, render.output, render.camera, render.shading.plugin),
              std::tuple("in.glb", "out.exr", "1", "p.so"));
    EXPECT_EQ(std::tie(render.width, render.height, render.samples, render.mostSamples),
              std::tuple(30, 20, 2, 8));
    EXPECT_EQ(std::tie(render.filter, render.depth, render.format, render.progress),
              std::tuple(PixelFilter::Tent, PictureDepth::Half, PictureFormat::Kind::Exr,
                         ProgressKind::Bar));
    EXPECT_EQ(std::tie(render.scale, render.cropShares, render.lighting.ambient,
                       render.lighting.exposure, render.lighting.falloff),
              std::tuple(0.5, CropShares{0, 0, 1, 0.5}, Imath::V3d(0.25), 3, true));
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
    EXPECT_TRUE(parsed<RenderRequest>("render in.glb --list-cameras").listCameras);
    EXPECT_TRUE(parsed<LooksRequest>("looks --json").json);
}

TEST(CommandLine, PutsTheLastOnTheLineBeforeTheEnvironment) {
    setenv("TAVORA_THREADS", "3", 1);
    EXPECT_EQ(parsed<EditRequest>("edit").threads, 3);
    EXPECT_EQ(parsed<EditRequest>("edit -t 1 -t 2").threads, 2);
    setenv("TAVORA_THREADS", "many", 1);
    EXPECT_EQ(parsed<EditRequest>("edit -t 2").threads, 2);
    EXPECT_THROW(parsed<EditRequest>("edit"), Error);
    parsed<LooksRequest>("looks");  // which has no threads
    setenv("TAVORA_THREADS", "", 1);
    EXPECT_EQ(parsed<EditRequest>("edit").threads, 0);
    unsetenv("TAVORA_THREADS");
}

}  // namespace
}  // namespace tavora::studio
