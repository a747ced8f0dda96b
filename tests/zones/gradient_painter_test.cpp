#include "zones/gradient_painter.h"

#include <gtest/gtest.h>

#include "panel/controls.h"
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
    FakePixel onlyZone(Zone zone, int column, int row) {
        Zone end;
        end.position = 1.0f;
        replaceZones(*record, {zone, end});
        paint();
        return pixel(column, row);
    }
    static Zone zoneOf(float red, float green, float blue) {
        Zone zone;
        zone.color[0] = red;
        zone.color[1] = green;
        zone.color[2] = blue;
        return zone;
    }
};

TEST_F(GradientPainter, ShowsEachBandUpToItsLastColumn) {
    whileOpen([&] {
        paint();
        EXPECT_EQ(panels.pixels, 389 * 20);
        const FakePixel black{0, 0, 0};
        const FakePixel blue{0, 0, 255};
        const FakePixel green{0, 255, 0};
        const FakePixel red{255, 0, 0};
        for (const auto& [column, color] : {std::pair{1, black},
                                            {97, black},
                                            {98, blue},
                                            {195, blue},
                                            {196, green},
                                            {292, green},
                                            {293, red},
                                            {389, red}}) {
            EXPECT_EQ(pixel(column, 0), color) << column;
            EXPECT_EQ(pixel(column, 19), color) << column;
        }
        const FakePixel untouched{-1, -1, -1};
        EXPECT_EQ(pixel(0, 0), untouched);
        EXPECT_EQ(pixel(390, 0), untouched);
        EXPECT_EQ(panels.strip[200][8], untouched);
        EXPECT_EQ(panels.strip[200][29], untouched);
    });
}

TEST_F(GradientPainter, LetsTheBoardShowThroughAndAppliesBothFactorsTwice) {
    whileOpen([&] {
        Zone half = zoneOf(1, 0, 0);
        half.opacity = 0.5f;
        EXPECT_EQ(onlyZone(half, 1, 0), (FakePixel{255, 127, 127})) << "a white square";
        EXPECT_EQ(onlyZone(half, 6, 0), (FakePixel{127, 0, 0})) << "a black one";
        EXPECT_EQ(onlyZone(half, 6, 5), (FakePixel{255, 127, 127}));

        Zone grey = zoneOf(0, 1, 0);
        grey.sat = 0.0f;
        EXPECT_EQ(onlyZone(grey, 10, 3), (FakePixel{85, 85, 85}));
        Zone dim = zoneOf(0, 1, 0);
        dim.bright = 0.5f;
        EXPECT_EQ(onlyZone(dim, 10, 3), (FakePixel{0, 63, 0}));
        Zone bright = zoneOf(0, 1, 0);
        bright.bright = 2.0f;
        EXPECT_EQ(onlyZone(bright, 10, 3), (FakePixel{0, 1020, 0})) << "nothing is clamped";
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
