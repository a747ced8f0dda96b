#include "studio/app/progress.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "studio/setup/report.h"
#include "studio/util/text.h"

namespace tavora::studio {
namespace {

TEST(Progress, BarFitsItsTerminal) {
    EXPECT_EQ(progressBar(0, 5, 30), "[......................]   0%");
    EXPECT_EQ(progressBar(0.25, 10, 30), "[###.........]  25% 0:30 left");
    EXPECT_EQ(progressBar(0.5, 4000, 40).substr(20), "]  50% 1:06:40 left");
    for (const int width : {0, 10, 20, 40, 200}) {
        EXPECT_LE(progressBar(1, 1, width).size(), static_cast<std::size_t>(std::max(width, 20)));
    }
}

TEST(Progress, JsonLinesParse) {
    const auto line = nlohmann::json::parse(progressJson(0.25, 1.5));
    EXPECT_EQ(line["event"], "progress");
    EXPECT_EQ(line["done"], 0.25);
    EXPECT_EQ(line["left"], 4.5);
    EXPECT_FALSE(nlohmann::json::parse(progressJson(0, 1.5)).contains("left"));
}

TEST(Report, NamesCannotBreakALineOrPaintTheTerminal) {
    EXPECT_EQ(oneLine("a\nb\x1b[31m\x7f\xc3\xbc"), "a b?[31m?\xc3\xbc");
}

}  // namespace
}  // namespace tavora::studio
