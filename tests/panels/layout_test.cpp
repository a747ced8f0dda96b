// Where controls go: columns, rows, what must not move, the way of the Tab key.

#include "studio/panels/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/panels/focus_order.h"

namespace tavora::studio {
namespace {

using ::testing::ElementsAre;

LayoutItem labelled(int x, int y, int label) {
    return {LayoutKind::Labelled, {x, y}, label, {70, kRowHeight}, true, {}, {}};
}

TEST(Layout, FieldsShareColumnsAndRows) {
    std::vector<LayoutItem> items = {labelled(161, 121, 43), labelled(139, 150, 66),
                                     labelled(310, 151, 105), labelled(374, 281, 60),
                                     labelled(600, 121, 20)};
    layOut(items, QRect(135, 93, 400, 227));
    const int column = 135 + 8 + 66 + kLabelGap;
    EXPECT_EQ(items[0].fieldRect.left(), column);
    EXPECT_EQ(items[1].fieldRect.left(), column);
    EXPECT_EQ(items[0].labelRect.right() + 1 + kLabelGap, column);
    EXPECT_EQ(items[2].fieldRect.left(), items[3].fieldRect.left());
    EXPECT_EQ(items[2].fieldRect.top(), 150);  // a pixel up, into the row
    EXPECT_EQ(items[4].fieldRect.left(), 600 + 20 + kLabelGap);
}

TEST(Layout, ErasedControlsMoveNobody) {
    std::vector<LayoutItem> items = {labelled(10, 100, 30), labelled(10, 99, 30)};
    items[1].visible = false;
    layOut(items);
    EXPECT_EQ(items[0].fieldRect.top(), 100);
}

TEST(Layout, AnAreaTakesThePatchBelowItOnlyWhereItCoversIt) {
    const LayoutItem color{LayoutKind::ColorPatch, {290, 121}, 0, {150, 20}, true, {}, {}};
    const LayoutItem over{LayoutKind::Area, {298, 122}, 0, kPatchSize, true, {}, {}};
    LayoutItem beside = over;
    beside.at = {340, 122};
    std::vector<LayoutItem> items = {color, over, beside};
    layOut(items);
    EXPECT_EQ(items[1].fieldRect, QRect(items[0].fieldRect.topLeft(), QSize(30, kRowHeight)));
    EXPECT_EQ(items[2].fieldRect.left(), 340);
}

TEST(Layout, TooWideNeighboursMakeRoom) {
    std::vector<LayoutItem> items(2, {LayoutKind::Button, {237, 325}, 0, {96, 19}, true, {}, {}});
    items[1].at.setX(327);
    layOut(items);
    EXPECT_LT(items[0].fieldRect.right(), items[1].fieldRect.left());
    EXPECT_EQ(items[1].fieldRect.left(), 327);
}

TEST(FocusOrder, GoesThroughTheBoxBeforeWhatStandsBesideIt) {
    const std::vector<QRect> places = {{10, 88, 100, 200}, {300, 121, 50, 20}, {200, 122, 50, 20},
                                       {135, 69, 300, 25}, {200, 325, 80, 20}, {20, 336, 90, 20}};
    EXPECT_THAT(focusOrder(places, QRect(135, 93, 400, 227)), ElementsAre(3, 2, 1, 0, 5, 4));
    EXPECT_THAT(focusOrder(places, {}), ElementsAre(3, 2, 1, 0, 4, 5));
}

}  // namespace
}  // namespace tavora::studio
