#include "studio/link/state_block.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace tavora::studio {
namespace {

TEST(StateBlock, GivesBackWhatWasWritten) {
    StateBlock block;
    const BlockWriter writer(block);
    const HostSaveState& out = *writer.record();
    const std::int32_t numbers[] = {6, -1};
    const float color[] = {0.1F, 0.25F, INFINITY};
    out.writeInt(out.data, numbers, 2);
    out.writeFloat(out.data, color, 3);
    out.writeString(out.data, "Key");
    EXPECT_EQ(block, (StateBlock{6, -1, 0.1F, 0.25F, INFINITY, "Key"}));

    const BlockReader reader(block);
    const HostLoadState& in = *reader.record();
    std::int32_t readNumbers[2] = {};
    float readColor[3] = {};
    char name[150] = "";
    EXPECT_EQ(in.readInt(in.data, readNumbers, 2), 2);
    EXPECT_EQ(in.readFloat(in.data, readColor, 3), 3);
    EXPECT_EQ(in.readString(in.data, name, sizeof name), 1);
    EXPECT_EQ(readNumbers[1], -1);
    EXPECT_EQ(readColor[2], INFINITY);
    EXPECT_STREQ(name, "Key");
    EXPECT_EQ(in.readString(in.data, name, sizeof name), 0);
}

TEST(StateBlock, EndsAtAnItemOfAnotherKind) {
    const StateBlock block{0.5F, 2, 0.75F};
    const BlockReader reader(block);
    const HostLoadState& in = *reader.record();
    float values[3] = {-1, -1, -1};
    EXPECT_EQ(in.readFloat(in.data, values, 3), 1);
    EXPECT_EQ(values[0], 0.5F);
    EXPECT_EQ(values[1], -1);
    std::int32_t number = -1;
    EXPECT_EQ(in.readInt(in.data, &number, 1), 0);
    EXPECT_EQ(in.readFloat(in.data, values, 0), 0);
    EXPECT_EQ(in.readFloat(in.data, values, -3), 0);
}

TEST(StateBlock, CutsStringsToTheBuffer) {
    const StateBlock block{"abcdef", "x"};
    const BlockReader reader(block);
    const HostLoadState& in = *reader.record();
    char buffer[4] = "???";
    EXPECT_EQ(in.readString(in.data, buffer, 0), 0);
    EXPECT_EQ(in.readString(in.data, buffer, 4), 1);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(in.readString(in.data, buffer, 1), 1);
    EXPECT_STREQ(buffer, "");
}

}  // namespace
}  // namespace tavora::studio
