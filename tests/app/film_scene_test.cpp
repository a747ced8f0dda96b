// What stays the same over a film, whatever part of it is rendered.

#include "studio/setup/film_scene.h"

#include <cmath>
#include <gtest/gtest.h>

#include "studio/scene/framing/default_view.h"
#include "studio/util/color.h"
#include "tests/scene/gltf_builder.h"

namespace tavora::studio {
namespace {

using Imath::V3d;

struct Film : GltfBuilder {
    Json channels = Json::array(), samplers = Json::array();

    void point(const std::string& pointer, const std::vector<float>& values, const char* type) {
        channels.push_back(
            {{"sampler", samplers.size()},
             {"target",
              {{"path", "pointer"},
               {"extensions", {{"KHR_animation_pointer", {{"pointer", pointer}}}}}}}});
        const int input = accessor<float>({0, 1, 2}, "SCALAR");
        samplers.push_back({{"input", input}, {"output", accessor(values, type)}});
    }
    /// Settled, at a time.
    std::unique_ptr<FilmScene> at(double seconds) {
        document["animations"] = Json::array({{{"channels", channels}, {"samplers", samplers}}});
        const TemporaryFolder folder;
        Report report{ReportOptions{}};
        auto film = std::make_unique<FilmScene>(write(folder), ReadOptions{});
        film->play({}, report);
        film->prepare({}, 1.5);
        film->pose(seconds);
        return film;
    }
    double levelAt(double seconds, std::size_t light) {
        const Imath::V3d color = at(seconds)->lights({}).lights.at(light).color;
        return std::max({color.x, color.y, color.z});
    }
};

TEST(FilmScene, LevelsFollowTheFilesLightsAndNotWhatIsInTheFrame) {
    Film film;
    film.triangle({{"scale", {9, 9, 1}}, {"translation", {-3, -3, 0}}});
    film.document["extensions"]["KHR_lights_punctual"]["lights"] =
        R"([{"type": "point", "intensity": 50}, {"type": "directional", "intensity": 1}])"_j;
    for (const int light : {0, 1})
        film.root({{"extensions", {{"KHR_lights_punctual", {{"light", light}}}}}});
    // The lamp flickers, dims and goes far away: its level is that of its intensity.
    film.point("/extensions/KHR_lights_punctual/lights/0/intensity", {100, 25, 0}, "SCALAR");
    film.point("/nodes/1/translation", {0, 0, 1, 0, 0, 4, 0, 0, 400}, "VEC3");
    EXPECT_NEAR(film.levelAt(0, 0), 1, 1e-9) << "the strongest of the film";
    EXPECT_NEAR(film.levelAt(1, 0), 0.25, 1e-6) << "not brought up to what it was";
    EXPECT_EQ(film.levelAt(2, 0), 0);
    for (const double t : {0.0, 0.7, 2.0})
        EXPECT_EQ(film.levelAt(t, 1), 1) << "the sun is the strongest sun";
    EXPECT_EQ(film.at(2)->lights({}).ambient, film.at(0)->lights({}).ambient);
}

TEST(FilmScene, FramingHoldsAllOfTheFilmAndStaysAndSoDoesTheKeyLight) {
    Film film;
    film.triangle();
    film.point("/nodes/0/translation", {0, 0, 0, 5, 0, 0, 0, 8, 0}, "VEC3");
    const Camera first = film.at(0)->camera();
    for (const double t : {0.0, 1.0, 1.9, 2.0, 50.0}) {
        const auto there = film.at(t);
        EXPECT_EQ(there->camera().cameraToWorld, first.cameraToWorld);
        const Imath::M44d toCamera = first.cameraToWorld.inverse();
        for (const V3d& corner : {there->scene().bounds.min, there->scene().bounds.max}) {
            const V3d seen = corner * toCamera;
            const double up = std::tan(first.verticalFov / 2) * -seen.z;
            EXPECT_TRUE(std::abs(seen.y) < up && std::abs(seen.x) < 1.5 * up) << t;
        }
    }
    film.document["cameras"] =
        R"([{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}])"_j;
    const int node = film.root({{"camera", 0}});
    film.point("/nodes/" + std::to_string(node) + "/rotation",
               {0, 0, 0, 1, 0, 0.7F, 0, 0.7F, 0, 1, 0, 0}, "VEC4");
    EXPECT_NE(film.at(1)->camera().cameraToWorld, film.at(0)->camera().cameraToWorld);
    EXPECT_EQ(film.at(1)->lights({}).lights[0].light->direction,
              keyLight(film.at(0)->camera()).direction)
        << "a view that moves does not carry the light about";
}

}  // namespace
}  // namespace tavora::studio
