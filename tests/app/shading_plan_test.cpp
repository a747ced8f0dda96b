#include "studio/setup/shading_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/scene/settings/settings.h"
#include "studio/util/error.h"
#include "tests/files/temporary_folder.h"
#include "tests/scene/settings_samples.h"

namespace tavora::studio {
namespace {

using testing::HasSubstr;

class ShadingPlan : public testing::Test {
  protected:
    ShadingPlan() {
        for (const char* name : {"Body", "Glass.001", "Glass.002", "[odd]*"}) {
            Surface& surface = scene_.surfaces.emplace_back();
            surface.name = name;
            surface.materialIndex = 0;
        }
        putBytes(folder_ / "a.json", look(R"({"edgeCoverage": 0.3, "edgeEnable": false})"));
        putBytes(folder_ / "b.json", look(R"({"edgeCoverage": 0.4, "lights": "all"})"));
    }

    static std::string look(const std::string& settings) {
        return R"({"tavora": "look", "version": 1, "settings": )" + settings + "}";
    }

    std::string file(const char* name) const { return folder_ / name; }

    SurfaceShaders plan() {
        testing::internal::CaptureStderr();
        const std::vector<std::string> lights{"Key", "F\xc3\xbcll"};
        SurfaceShaders planned;
        try {
            planned = planSurfaces(scene_, request_, shader_, lights, report_);
        } catch (...) {
            testing::internal::GetCapturedStderr();
            throw;
        }
        said_ = testing::internal::GetCapturedStderr();
        return planned;
    }

    TemporaryFolder folder_;
    Scene scene_;
    ShaderClass shader_{"tavora.so", "TAVO", sampleBlock()};
    Report report_{ReportOptions{}};
    ShadingRequest request_;
    std::string said_;
};

TEST_F(ShadingPlan, LooksGoOnTheSurfacesTheyNameAndPlainWins) {
    request_.looks = {{"", file("a.json")}, {"Glass*", file("b.json")}};
    request_.plain = {"Glass.002"};
    auto planned = plan();
    EXPECT_EQ(settingsOf(planned[0]->block)["edgeCoverage"].dump(), "0.3");
    EXPECT_EQ(settingsOf(planned[1]->block)["edgeCoverage"].dump(), "0.4");
    EXPECT_EQ(settingsOf(planned[1]->block)["edgeEnable"], true) << "the last look alone counts";
    EXPECT_EQ(settingsOf(planned[1]->block)["lightList"].dump(), "[\"Key\",\"F\xc3\xbcll\"]");
    EXPECT_EQ(settingsOf(planned[0]->block)["maxTraceDepth"], 3) << "the rest is built in";
    EXPECT_FALSE(planned[2]);
    EXPECT_EQ(said_, "");
    request_.looks = {{"[odd]*", file("a.json")}};
    planned = plan();
    EXPECT_TRUE(planned[3]) << "a name before a pattern";
    EXPECT_FALSE(planned[0]);
    request_.plain = {"Glas"};
    EXPECT_THROW(plan(), Error);
}

TEST_F(ShadingPlan, ChangesLieOverLooksInPlaceOfStoredSettings) {
    StateBlock stored = sampleBlock();
    stored[2] = 0.5F;
    scene_.surfaces[0].shader = SurfaceShader{"TAVO", false, stored};
    request_.defaultLook = file("b.json");
    auto planned = plan();
    EXPECT_FALSE(planned[0]->enabled);
    EXPECT_EQ(planned[0]->block, stored);
    request_.defaultLook = "";

    request_.looks = {{"Body", file("a.json")}};
    request_.changes = {{"*", "edgeCoverage", "0.9"},
                        {"Body", "zones[0].color", "1,0,0"},
                        {"Body", "lights", "Key,Ambient"},
                        {"Body", "highlightEnable", "off"}};
    planned = plan();
    EXPECT_TRUE(planned[0]->enabled);
    const Settings settings = settingsOf(planned[0]->block);
    EXPECT_EQ(settings["highlightOutlineSize"].dump(), "0.02") << "built in, not stored";
    EXPECT_EQ(settings["edgeCoverage"].dump(), "0.9");
    EXPECT_EQ(settings["zoneList"][0]["color"].dump(), "[1.0,0.0,0.0]");
    EXPECT_EQ(settings["lightList"].dump(), R"(["Key","Ambient"])");
    EXPECT_EQ(settings["highlightEnable"], "Off");
    EXPECT_FALSE(planned[1]) << "a change alone puts no shader on a plain surface";
}

TEST_F(ShadingPlan, WhatCannotBeUsedIsSaidOnce) {
    StateBlock damaged = sampleBlock();
    damaged.pop_back();
    scene_.surfaces[0].shader = SurfaceShader{"TAVO", true, damaged};
    scene_.surfaces[1].shader = SurfaceShader{"ELSE", true, {}};
    scene_.surfaces[2].shader = SurfaceShader{"TAVO", true, sampleBlock({}, 0, {"Gone"})};
    std::vector<std::string> many{"Gone"};
    for (char name = 'A'; name <= 'U'; ++name)
        many.emplace_back(20, name);
    scene_.surfaces[3].shader = SurfaceShader{"TAVO", true, sampleBlock({}, 0, many)};
    const auto planned = plan();
    EXPECT_EQ(planned[0]->block, sampleBlock());
    EXPECT_FALSE(planned[1]);
    EXPECT_THAT(said_, HasSubstr("surface \"Body\": stored settings are damaged"));
    EXPECT_THAT(said_, HasSubstr("no module has its shader \"ELSE\""));
    EXPECT_THAT(said_, HasSubstr("its light \"Gone\" is not in the scene; there are: Key"));
    EXPECT_THAT(said_, HasSubstr("2 more lights are not in the scene"));
    EXPECT_EQ(std::count(said_.begin(), said_.end(), '\n'), 2 + 21);
}

}  // namespace
}  // namespace tavora::studio
