#include "studio/app/option_values.h"

#include <gtest/gtest.h>

#include "studio/app/picture_area.h"
#include "studio/app/progress.h"
#include "studio/util/error.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

/// Expects that `read` refuses each of these texts.
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
    EXPECT_EQ(cropShares("0,0.25,1,0.5"), (CropShares{0, 0.25, 1, 0.5}));
    expectRefused(cropShares, {"0,0,1,1.5", "0,0.5,1,0.5", "nan,0,1,1", "0,0,1"});
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
        request.cropShares = CropShares{i / 7.0, 0, (i + 1) / 7.0, 1};
        const PixelBox box = *pictureArea(request).crop;
        EXPECT_EQ(box.left, covered);
        EXPECT_EQ(box.height(), 33);
        covered = box.right;
    }
    EXPECT_EQ(covered, 101);
    request = {};
    request.scale = 0.001;
    EXPECT_EQ(pictureArea(request).width, 1);
    request.scale = 100;
    EXPECT_THROW(pictureArea(request), Error);
    request.cropPixels = PixelBox{100000, 0, 128000, 10};
    EXPECT_EQ(pictureArea(request).width, 128000);
    request.cropPixels->right = 128001;
    EXPECT_THROW(pictureArea(request), Error);
}

TEST(Progress, BarsFitTheirTerminalsAndNamesCannotPaintThem) {
    EXPECT_EQ(progressBar(0, 5, 30), "[......................]   0%");
    EXPECT_EQ(progressBar(0.25, 10, 30), "[###.........]  25% 0:30 left");
    EXPECT_EQ(progressBar(0.5, 4000, 10), "[]  50% 1:06:40 left");
    EXPECT_EQ(progressJson(0.25, 1.5),
              R"({"event":"progress","done":0.2500,"elapsed":1.500,"left":4.500})");
    EXPECT_EQ(progressJson(0, 1.5), R"({"event":"progress","done":0.0000,"elapsed":1.500})");
    EXPECT_EQ(oneLine("a\nb\x1b[31m\x7f\xc3\xbc"), "a b?[31m?\xc3\xbc");
}

}  // namespace
}  // namespace tavora::studio
