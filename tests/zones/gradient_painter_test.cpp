#include "zones/editor/gradient_painter.h"

#include <gtest/gtest.h>

#include "panel/controls/controls.h"
#include "tests/support/open_panel.h"
#include "zones/zone_list.h"

namespace tavora::testing {
namespace {

class GradientPainter : public PanelTest {
  protected:
    /// Repaints and clears what was painted before.
    void paint() {
        panels.marks.clear();
        panels.pixels = 0;
        drawGradient(record.get());
        drawGradCon(record.get());
    }
    FakePixel pixel(int column, int row) {
        return panels.strip.at(static_cast<std::size_t>(column + 139))
            .at(static_cast<std::size_t>(row + 9));
    }
    /// The strip of two zones: this one over the whole length, and the end.
    FakePixel onlyZone(const Zone& zone, int column, int row) {
        replaceZones(*record, {zone, greyZone(1.0f, 0.0f)});
        paint();
        return pixel(column, row);
    }
};

TEST_F(GradientPainter, ShowsEachBandUpToItsLastColumn) {
    whileOpen([&] {
        paint();
        EXPECT_EQ(panels.pixels, 389 * 20);
        const FakePixel black{0, 0, 0}, blue{0, 0, 255}, green{0, 255, 0}, red{255, 0, 0};
        const FakePixel untouched{-1, -1, -1};
        const std::pair<int, FakePixel> columns[] = {
            {0, untouched}, {1, black},   {97, black}, {98, blue}, {195, blue},
            {196, green},   {292, green}, {293, red},  {389, red}, {390, untouched}};
        for (const auto& [column, color] : columns) {
            EXPECT_EQ(pixel(column, 0), color) << column;
            EXPECT_EQ(pixel(column, 19), color) << column;
        }
        EXPECT_EQ(pixel(61, -1), untouched);
        EXPECT_EQ(pixel(61, 20), untouched);
    });
}

TEST_F(GradientPainter, LetsTheBoardShowThroughAndAppliesBothFactorsTwice) {
    whileOpen([&] {
        const Zone half = zoneOf(0, {1, 0, 0}, 0.5f, 1, 1);
        for (const int column : {1, 5})
            EXPECT_EQ(onlyZone(half, column, 4), (FakePixel{255, 127, 127})) << "a white square";
        EXPECT_EQ(onlyZone(half, 6, 0), (FakePixel{127, 0, 0})) << "a black one";
        EXPECT_EQ(onlyZone(half, 6, 5), (FakePixel{255, 127, 127}));
        const auto green = [&](float bright, float sat) {
            return onlyZone(zoneOf(0, {0, 1, 0}, 1, bright, sat), 10, 3);
        };
        EXPECT_EQ(green(1, 0), (FakePixel{85, 85, 85}));
        EXPECT_EQ(green(0.5f, 1), (FakePixel{0, 63, 0}));
        EXPECT_EQ(green(2, 1), (FakePixel{0, 1020, 0})) << "nothing is clamped";
    });
}

TEST_F(GradientPainter, MarksZonesByKindAndTheSelectedOne) {
    whileOpen([&] {
        addZone(record.get(), 0.6, 1);
        moveZone(record.get(), 0.5);
        panels.log.clear();
        paint();
        const std::vector<std::string> expected = {"| 139 33 255", "| 236 33 255", "| 334 33 255",
                                                   "^ 332 33 255", "' 373 33 255", "| 431 33 255",
                                                   "  527 33 255"};
        EXPECT_EQ(panels.marks, expected);
        EXPECT_EQ(panels.log, std::vector<std::string>{"draw 52 1"});
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        redraw(panelID, record.get());
        EXPECT_EQ(panels.borders, (std::vector<std::string>{"0 135 185 400 0 ", "0 135 267 400 0 ",
                                                            "0 135 93 400 227 "}));
    });
}

}  // namespace
}  // namespace tavora::testing
