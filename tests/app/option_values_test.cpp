#include "studio/app/option_values.h"

#include <gtest/gtest.h>

#include "studio/app/picture_area.h"
#include "studio/util/error.h"

namespace tavora::studio {
namespace {

TEST(OptionValues, ReadNumbersWhole) {
    EXPECT_EQ(wholeNumber("-s", "16", 1, 64), 16);
    for (const char* text : {"", "0", "65", "1.5", "1 ", " 1", "+1", "x", "99999999999"}) {
        EXPECT_THROW(wholeNumber("-s", text, 1, 64), Error) << text;
    }
    EXPECT_EQ(percentage("--scale", "50%"), 0.5);
    EXPECT_EQ(percentage("--scale", "12.5"), 0.125);
    EXPECT_THROW(percentage("--scale", "nan"), Error);
    EXPECT_THROW(percentage("--scale", "0"), Error);
    EXPECT_THROW(percentage("--scale", "%"), Error);
}

TEST(OptionValues, ReadSizesAndCrops) {
    EXPECT_EQ(resolution("-r", "1920x1080"), std::pair(1920, 1080));
    for (const char* text : {"1920", "x", "1920x", "0x1", "1x-1", "1x1x1", "99999x1", "1X1"}) {
        EXPECT_THROW(resolution("-r", text), Error) << text;
    }
    EXPECT_EQ(sampleCounts("-s", "16"), std::pair(16, 0));
    EXPECT_EQ(sampleCounts("-s", "4..64"), std::pair(4, 64));
    EXPECT_EQ(sampleCounts("-s", "8..8"), std::pair(8, 0));
    for (const char* text : {"", "0", "4..", "..4", "64..4", "4...64", "1..70000", "4..x"})
        EXPECT_THROW(sampleCounts("-s", text), Error) << text;
    EXPECT_EQ(cropPixels("--crop-pixels", "1,2,3,4"), (PixelBox{1, 2, 3, 4}));
    for (const char* text : {"1,2,3", "1,2,1,4", "3,2,1,4", "-1,0,1,1", "1,2,3,4,5", "0,0,.5,1"}) {
        EXPECT_THROW(cropPixels("--crop-pixels", text), Error) << text;
    }
    EXPECT_EQ(cropShares("--crop", "0,0.25,1,0.5"), (CropShares{0, 0.25, 1, 0.5}));
    for (const char* text : {"0,0,1,1.5", "0.5,0,0.5,1", "nan,0,1,1", "0,0,1"}) {
        EXPECT_THROW(cropShares("--crop", text), Error) << text;
    }
}

TEST(OptionValues, ReadColours) {
    EXPECT_EQ(color("--ambient", "#ff0080"), Imath::V3d(1, 0, 128 / 255.0));
    EXPECT_EQ(color("--ambient", "0.1,0.2,1"), Imath::V3d(0.1, 0.2, 1));
    EXPECT_EQ(color("--ambient", "0.25"), Imath::V3d(0.25));
    EXPECT_EQ(color("--ambient", "white"), Imath::V3d(1));
    for (const char* text : {"", "#fff", "#gggggg", "#ff00800", "1,1", "255,0,0", "red", "-1"}) {
        EXPECT_THROW(color("--ambient", text), Error) << text;
    }
    EXPECT_FALSE(background("--background", "transparent"));
    EXPECT_EQ(background("--background", "black"), Imath::V3d(0));
}

TEST(OptionValues, TellSurfacesFromLooksAndSettings) {
    EXPECT_EQ(lookChoice("noir").surfaces, "");
    const LookChoice look = lookChoice("a=b=none.json");
    EXPECT_EQ(look.surfaces, "a=b");
    EXPECT_EQ(look.look, "none.json");
    EXPECT_THROW(lookChoice("=noir"), Error);
    EXPECT_THROW(lookChoice("Body="), Error);

    struct Case {
        const char* text;
        const char* surfaces;
        const char* setting;
        const char* value;
    };
    const Case cases[] = {
        {"Body.edgeEnable=true", "Body", "edgeEnable", "true"},
        {"Mat.001.edgeColor=#ff0000", "Mat.001", "edgeColor", "#ff0000"},
        {"*.zones[1].color=1,0,0", "*", "zones[1].color", "1,0,0"},
        {"a.zones[0].b.zoneList[2].sat=0", "a.zones[0].b", "zoneList[2].sat", "0"},
        {"a.zones[0].b.edgeEnable=1", "a.zones[0].b", "edgeEnable", "1"},
        {"Body.zones=[]", "Body", "zones", "[]"},
        {"Body.lights=a=b", "Body", "lights", "a=b"},
        {"a=b.edgeEnable=1", "a=b", "edgeEnable", "1"},
        {"x.y=z.edgeEnable=1", "x.y=z", "edgeEnable", "1"},
        {"a.lights\\=b.edgeEnable=1", "a.lights\\=b", "edgeEnable", "1"},
        {"Body.edgeEnabel=a=b", "Body", "edgeEnabel", "a=b"},
    };
    for (const Case& expected : cases) {
        const SettingChange change = settingChange(expected.text);
        EXPECT_EQ(change.surfaces, expected.surfaces) << expected.text;
        EXPECT_EQ(change.setting, expected.setting) << expected.text;
        EXPECT_EQ(change.value, expected.value) << expected.text;
    }
    for (const char* text : {"edgeEnable=1", "Body.edgeEnable", ".edgeEnable=1", "Body.=1", ""}) {
        EXPECT_THROW(settingChange(text), Error) << text;
    }
}

TEST(PictureArea, CropsOfSharedEdgesMeet) {
    RenderRequest request;
    request.width = 101;
    request.height = 33;
    int covered = 0;
    for (int i = 0; i < 7; ++i) {
        request.cropShares = CropShares{i / 7.0, 0, (i + 1) / 7.0, 1};
        const PixelBox box = *pictureArea(request).crop;
        EXPECT_EQ(box.left, covered);
        EXPECT_EQ(box.height(), 33);
        covered = box.right;
    }
    EXPECT_EQ(covered, 101);
}

TEST(PictureArea, ScalesAndStaysWithinReason) {
    RenderRequest request;
    request.scale = 0.001;
    EXPECT_EQ(pictureArea(request).width, 1);
    EXPECT_EQ(pictureArea(request).height, 1);
    request.scale = 100;
    EXPECT_THROW(pictureArea(request), Error);
    request.cropPixels = PixelBox{100000, 0, 100010, 10};
    EXPECT_EQ(pictureArea(request).width, 128000);
    request.cropPixels->right = 128001;
    EXPECT_THROW(pictureArea(request), Error);
}

}  // namespace
}  // namespace tavora::studio
