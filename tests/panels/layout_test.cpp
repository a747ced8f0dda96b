
#include "studio/panels/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "studio/panels/focus_order.h"

namespace tavora::studio {
namespace {

using ::testing::ElementsAre;

LayoutItem item(LayoutKind kind, int x, int y, QSize field, int label = 0, bool visible = true) {
    return {kind, {x, y}, label, field, visible, {}, {}};
}

LayoutItem labelled(int x, int y, int label, bool visible = true) {
    return item(LayoutKind::Labelled, x, y, {70, kRowHeight}, label, visible);
}

TEST(Layout, FieldsShareColumnsAndRowsAndErasedOnesMoveNobody) {
    std::vector<LayoutItem> items = {labelled(163, 121, 43),  labelled(139, 150, 66),
                                     labelled(310, 154, 105), labelled(374, 281, 60),
                                     labelled(600, 121, 20),  labelled(600, 119, 20, false)};
    layOut(items, QRect(135, 93, 400, 227));
    const int column = 135 + 8 + 66 + kLabelGap;
    EXPECT_EQ(items[0].fieldRect.left(), column);
    EXPECT_EQ(items[1].fieldRect.left(), column);
    EXPECT_EQ(items[0].labelRect.right() + 1 + kLabelGap, column);
    EXPECT_EQ(items[2].fieldRect.left(), items[3].fieldRect.left());
    EXPECT_EQ(items[2].fieldRect.top(), 150);  // a little up, into the row
    EXPECT_EQ(items[4].fieldRect.topLeft(), QPoint(600 + 20 + kLabelGap, 121));
}

TEST(Layout, AnAreaTakesThePatchBelowItOnlyWhereItCoversIt) {
    std::vector<LayoutItem> items = {item(LayoutKind::ColorPatch, 290, 121, {150, 20}),
                                     item(LayoutKind::Area, 298, 122, kPatchSize),
                                     item(LayoutKind::Area, 340, 122, kPatchSize),
                                     item(LayoutKind::ColorPatch, 290, 221, {150, 20}, 0, false),
                                     item(LayoutKind::Area, 298, 222, kPatchSize)};
    layOut(items);
    EXPECT_EQ(items[1].fieldRect, QRect(items[0].fieldRect.topLeft(), QSize(30, kRowHeight)));
    EXPECT_EQ(items[2].fieldRect.left(), 340);
    EXPECT_EQ(items[4].fieldRect.left(), 298) << "nothing is seen below it";
}

TEST(Layout, TooWideNeighboursMakeRoom) {
    std::vector<LayoutItem> items = {labelled(10, 100, 40),
                                     item(LayoutKind::Button, 110, 100, {96, 19})};
    layOut(items);
    EXPECT_EQ(items[0].fieldRect.right() + 1, 110 - 6);
    EXPECT_EQ(items[0].labelRect.right() + 1 + kLabelGap, items[0].fieldRect.left());
    EXPECT_EQ(items[1].fieldRect.left(), 110);
}

TEST(FocusOrder, GoesThroughTheBoxBeforeWhatStandsBesideIt) {
    const std::vector<QRect> places = {{10, 88, 100, 200}, {300, 121, 50, 20}, {200, 122, 50, 20},
                                       {135, 69, 300, 25}, {200, 325, 80, 20}, {20, 336, 90, 20}};
    EXPECT_THAT(focusOrder(places, QRect(135, 93, 400, 227)), ElementsAre(3, 2, 1, 0, 5, 4));
    EXPECT_THAT(focusOrder(places, {}), ElementsAre(3, 2, 1, 0, 4, 5));
}

}  // namespace
}  // namespace tavora::studio
