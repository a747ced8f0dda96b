#include "studio/link/state_block.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>

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
    std::int32_t number[2] = {};
    float value[3] = {};
    char name[3] = "??";
    EXPECT_EQ(in.readInt(in.data, number, 2), 2);
    EXPECT_EQ(number[1], -1);
    EXPECT_EQ(in.readFloat(in.data, value, 3), 3);
    EXPECT_EQ(value[2], INFINITY);
    EXPECT_EQ(in.readString(in.data, name, 0), 0);
    EXPECT_EQ(in.readString(in.data, name, sizeof name), 1);
    EXPECT_STREQ(name, "Ke") << "cut to the buffer";
    EXPECT_EQ(in.readString(in.data, name, sizeof name), 0);
}

TEST(StateBlock, EndsAtAnItemOfAnotherKind) {
    const StateBlock block{0.5F, 2, 0.75F};
    const BlockReader reader(block);
    const HostLoadState& in = *reader.record();
    float values[2] = {-1, -1};
    EXPECT_EQ(in.readFloat(in.data, values, -3), 0);
    EXPECT_EQ(in.readFloat(in.data, values, 2), 1);
    EXPECT_EQ(values[1], -1) << "what is not read is left alone";
    std::int32_t number = -1;
    EXPECT_EQ(in.readInt(in.data, &number, 1), 0);
}

}  // namespace
}  // namespace tavora::studio
