// Avatars' materials as zones, beside their own formula.

#include <cmath>
#include <gtest/gtest.h>

#include "studio/link/module_copy.h"
#include "studio/link/shader.h"
#include "studio/scene/settings/settings.h"
#include "studio/scene/settings/toon_zones.h"
#include "studio/services/registry.h"
#include "studio/util/color.h"
#include "tests/render/test_scene.h"

namespace tavora::studio {
namespace {

using Imath::V3d;
using Imath::V3f;

struct Avatar {
    float shift;
    float toony;
    bool textured;
    bool exact;
};

/// A ball that a sun lights from the right, so that half of it is dark.
struct Ball : TestScene {
    explicit Ball(const Avatar& avatar) {
        Surface& surface = addSurface();
        surface.baseColor = {0.8F, 0.5F, 0.35F, 1};
        surface.selfShadow = false;
        surface.toon.emplace();
        surface.toon->shadeColor = V3f(0.35F, 0.12F, 0.2F);
        surface.toon->shift = avatar.shift;
        surface.toon->toony = avatar.toony;
        if (avatar.textured) {
            surface.baseColorTexture.emplace().image = addImage(1, 1, {90, 200, 255, 255});
        }
        addObject(sphereMesh(1, 128, 64), 0);
        addSun({-1, 0, 0});
        rig.ambient = V3d(0.25);
    }

    Picture picture(const ToonZones& zones, int size) const {
        const StateBlock builtIn = newShaderSettings(ModuleCopy(TAVORA_MODULE, findService));
        const std::vector<std::string> lights = {rig.lights[0].light->name};
        return renderWith(*this, frontCamera({0, 0, 5}, 1), squareOptions(size), TAVORA_MODULE,
                          withChanges(builtIn, zones.settings, "test", lights));
    }

    V3d base() const {
        const Surface& surface = scene.surfaces[0];
        V3d color(V3f(surface.baseColor.x, surface.baseColor.y, surface.baseColor.z));
        if (surface.baseColorTexture) color *= V3d(toLinear(90 / 255.0), toLinear(200 / 255.0), 1);
        return color;
    }
};

/// The extension's formula for a white light of strength 1.
V3d formula(const Ball& ball, const Avatar& avatar, double cosine) {
    const double shading = cosine + static_cast<double>(avatar.shift);
    const double low = static_cast<double>(avatar.toony) - 1;
    const double share =
        low == 0 ? (shading > 0 ? 1 : 0) : std::clamp((shading - low) / (-2 * low), 0.0, 1.0);
    const V3d color =
        V3d(ball.scene.surfaces[0].toon->shadeColor) * (1 - share) + ball.base() * share;
    return {toEncoded(color.x), toEncoded(color.y), toEncoded(color.z)};
}

TEST(Avatars, ZonesAreTheFormulaWhereTheyCanBe) {
    constexpr int kSize = 96;
    for (const Avatar& avatar :
         {Avatar{0, 1, false, true}, Avatar{-0.3F, 1, false, true}, Avatar{-0.3F, 1, true, true},
          Avatar{1, 1, true, true}, Avatar{-1, 1, false, true}, Avatar{-0.2F, 0.85F, false, false},
          Avatar{-0.3F, 0.75F, true, false}}) {
        const Ball ball(avatar);
        const ToonZones zones = toonZones(ball.scene, ball.scene.surfaces[0]);
        EXPECT_EQ(zones.inexact.empty(), avatar.exact) << avatar.shift << " " << avatar.toony;
        const Picture picture = ball.picture(zones, kSize);
        // A smooth step is so far from a straight one at most, of 1; where the base
        // colour is left to a texture its upper half more.
        const double most = avatar.exact ? 2e-3 : avatar.textured ? 0.08 : 0.045;
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                const double cosine = (2 * x + 1.0) / kSize - 1;
                const double height = (2 * y + 1.0) / kSize - 1;
                const bool atBorder = std::abs(cosine + static_cast<double>(avatar.shift)) < 0.01;
                if (std::hypot(cosine, height) > 0.97 || (avatar.exact && atBorder)) continue;
                const V3d off = displayed(picture, x, y) - formula(ball, avatar, cosine);
                ASSERT_LT(off.length(), most) << avatar.shift << " at " << cosine;
            }
        }
    }
}

TEST(Avatars, ShadeTexturesAreMetByTintingTheBase) {
    // The shade is the base texture, darker and redder: what a zone of one colour over
    // it can be, and how far off that is, is told.
    Ball ball({-0.2F, 1, true, false});
    Surface& surface = ball.scene.surfaces[0];
    surface.baseColor = {1, 1, 1, 1};
    surface.toon->shadeColor = V3f(0.5F, 0.25F, 0.25F);
    surface.baseColorTexture->image = ball.addImage(
        2, 2, {250, 200, 180, 255, 60, 70, 160, 255, 90, 160, 70, 255, 230, 230, 230, 255});
    surface.toon->shadeTexture = surface.baseColorTexture;
    const ToonZones zones = toonZones(ball.scene, surface);
    const double opacity = zones.settings["zoneList"][0]["opacity"];
    EXPECT_GT(opacity, 0.3);
    EXPECT_LT(opacity, 0.8);
    EXPECT_EQ(zones.settings["zoneList"][1]["opacity"], 0) << "the lit side is the texture";
    ASSERT_EQ(zones.inexact.size(), 1U);
    surface.toon->shadeTexture.reset();
    EXPECT_EQ(toonZones(ball.scene, surface).settings["zoneList"][0]["opacity"], 1);
}

}  // namespace
}  // namespace tavora::studio
