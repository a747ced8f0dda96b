#include "studio/app/progress.h"

#include <gtest/gtest.h>

#include "studio/util/text.h"

namespace tavora::studio {
namespace {

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
