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
        const std::string look = R"({"tavora": "look", "version": 1, "settings": )";
        putBytes(a_, look + R"({"edgeCoverage": 0.3, "edgeEnable": false}})");
        putBytes(b_, look + R"({"edgeCoverage": 0.4, "lights": "all"}})");
    }

    SurfaceShaders plan() {
        const std::vector<std::string> lights{"Key", "F\xc3\xbcll"};
        return planSurfaces(scene_, request_, shader_, lights, report_);
    }
    static std::string of(const std::optional<SurfaceShader>& shader, const char* setting) {
        return settingsOf(shader->block)[setting].dump();
    }

    TemporaryFolder folder_;
    const std::string a_ = folder_ / "a.json", b_ = folder_ / "b.json";
    Scene scene_;
    ShaderClass shader_{"tavora.so", "TAVO", sampleBlock()};
    Report report_{ReportOptions{}};
    ShadingRequest request_;
};

TEST_F(ShadingPlan, ChangesLieOverTheLastLookInPlaceOfStoredSettings) {
    StateBlock stored = sampleBlock();
    stored[2] = 0.5F;
    scene_.surfaces[0].shader = SurfaceShader{"TAVO", false, stored};
    request_.defaultLook = b_;
    EXPECT_EQ(plan()[0], scene_.surfaces[0].shader);
    request_ = {};
    request_.looks = {{"Body", a_}, {"Glass*", a_}, {"Glass*", b_}};
    request_.plain = {"Glass.002"};
    request_.changes = {{"*", "edgeCoverage", "0.9"},
                        {"Body", "zones[0].color", "1,0,0"},
                        {"Body", "lights", "Key,Ambient"},
                        {"Body", "highlightEnable", "off"}};
    const auto planned = plan();
    EXPECT_TRUE(planned[0]->enabled);
    EXPECT_EQ(of(planned[0], "highlightOutlineSize"), "0.02") << "built in, not stored";
    EXPECT_EQ(of(planned[0], "edgeCoverage"), "0.9");
    EXPECT_EQ(settingsOf(planned[0]->block)["zoneList"][0]["color"].dump(), "[1.0,0.0,0.0]");
    EXPECT_EQ(of(planned[0], "lightList"), R"(["Key","Ambient"])");
    EXPECT_EQ(of(planned[0], "highlightEnable"), "\"Off\"");
    EXPECT_EQ(of(planned[1], "edgeEnable"), "true") << "the last look alone counts";
    EXPECT_EQ(of(planned[1], "lightList"), "[\"Key\",\"F\xc3\xbcll\"]");
    EXPECT_FALSE(planned[2] || planned[3]) << "a change alone puts no shader on a plain surface";
}

TEST_F(ShadingPlan, WhatCannotBeUsedIsSaidOnceAndNotWithoutEnd) {
    StateBlock damaged = sampleBlock();
    damaged.pop_back();
    std::vector<std::string> many{"Gone"};
    for (char name = 'A'; name <= 'U'; ++name)
        many.emplace_back(20, name);
    scene_.surfaces[0].shader = SurfaceShader{"TAVO", true, damaged};
    scene_.surfaces[1].shader = SurfaceShader{"ELSE", true, {}};
    scene_.surfaces[2].shader = SurfaceShader{"TAVO", true, sampleBlock({}, 0, {"Gone"})};
    scene_.surfaces[3].shader = SurfaceShader{"TAVO", true, sampleBlock({}, 0, many)};
    testing::internal::CaptureStderr();
    const auto planned = plan();
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(planned[0]->block, sampleBlock());
    EXPECT_FALSE(planned[1]);
    for (const char* line :
         {"surface \"Body\": stored settings are damaged", "no module has its shader \"ELSE\"",
          "its light \"Gone\" is not in the scene; there are: Key",
          "2 more lights are not in the scene"})
        EXPECT_THAT(said, HasSubstr(line));
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2 + 21);
}

}  // namespace
}  // namespace tavora::studio
