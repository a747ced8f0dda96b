#include "shading/render_pass.h"

#include <gtest/gtest.h>

#include "plugin/description.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

TEST(RenderPass, FindsTransparencyAboveAMillionth) {
    FakeHost host;
    Record record = newRecord();
    const auto usedWith = [&](float trans) {
        record->zoneList->next->trans = trans;
        EXPECT_EQ(Init(record.get(), 0), nullptr);
        EXPECT_EQ(record->zoneCursor, record->zoneList);
        return record->transparencyUsed;
    };
    EXPECT_EQ(Flags(record.get()), 0x41Eu);
    EXPECT_EQ(usedWith(0.000002f), 1);
    EXPECT_EQ(Flags(record.get()), 0x45Eu);
    // The nearest singles on either side of the limit.
    EXPECT_EQ(usedWith(9.99999997e-7f), 0);
    EXPECT_EQ(usedWith(1.00000011e-6f), 1);
    EXPECT_EQ(usedWith(-1.0f), 0);
    Cleanup(record.get());
}

TEST(RenderPass, KeepsOneMutexForAllRecords) {
    FakeHost host;
    Record first = newRecord(), second = newRecord();
    Cleanup(first.get());
    EXPECT_EQ(host.liveMutexes, 0);
    Init(first.get(), 0);
    const HostMutexId before = mtid;
    Init(second.get(), 0);
    EXPECT_EQ(host.liveMutexes, 1);
    EXPECT_NE(mtid, before);
    Cleanup(first.get());
    Cleanup(second.get());
    EXPECT_EQ(host.liveMutexes, 0);
    EXPECT_EQ(mtid, nullptr);
}

TEST(RenderPass, ReportsAMutexThatCannotBeMade) {
    FakeHost host;
    Record record = newRecord();
    Init(record.get(), 0);
    EXPECT_TRUE(host.errors.empty());
    host.mutexesWork = false;
    EXPECT_EQ(Init(record.get(), 0), nullptr);
    EXPECT_EQ(host.liveMutexes, 0);
    EXPECT_EQ(mtid, nullptr);
    EXPECT_EQ(host.errors, std::vector<std::string>{"Cound not create mutex"});
}

}  // namespace
}  // namespace tavora::testing
