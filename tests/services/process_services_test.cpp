// Services that know no scene: the registry, mutexes, messages, updates.

#include <atomic>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "host/services/color_picker.h"
#include "host/services/instance_update.h"
#include "host/services/messages.h"
#include "host/services/multithreading.h"
#include "host/services/panels.h"
#include "host/services/raster.h"
#include "studio/services/instance_update.h"
#include "studio/services/messages.h"
#include "tests/services/service_test.h"

namespace tavora::studio {
namespace {

TEST(Registry, OffersNothingItLacks) {
    for (const char* name : {HOST_PANELS_SERVICE, HOST_RASTER_SERVICE, HOST_COLOR_PICKER_SERVICE,
                             "", "lw item info 5"}) {
        EXPECT_EQ(findService(name, HOST_USE_TRANSIENT), nullptr) << name;
    }
    EXPECT_EQ(findService(nullptr, HOST_USE_TRANSIENT), nullptr);
}

TEST(Mutexes, AreRecursiveAndIndependent) {
    const auto& service = serviceTable<HostMultithreading>(HOST_MULTITHREADING_SERVICE);
    HostMutexId object = service.create();
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(service.lock(object, 0), 1);
    EXPECT_EQ(service.lock(object, 0), 1);
    EXPECT_EQ(service.unlock(object, 0), 1);

    // Still held once: another thread waits for number 0, not for number 15.
    std::promise<void> gotOther;
    std::future<void> other = gotOther.get_future();
    std::future<void> same = std::async(std::launch::async, [&] {
        service.lock(object, HOST_MUTEXES_PER_OBJECT - 1);
        service.unlock(object, HOST_MUTEXES_PER_OBJECT - 1);
        gotOther.set_value();
        EXPECT_EQ(service.unlock(object, 0), 0);  // not this thread's
        service.lock(object, 0);
        service.unlock(object, 0);
    });
    EXPECT_EQ(other.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(same.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    EXPECT_EQ(service.unlock(object, 0), 1);
    EXPECT_EQ(same.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(service.unlock(object, 0), 0);  // held no more

    for (const int number : {-1, int{HOST_MUTEXES_PER_OBJECT}})
        EXPECT_EQ(service.lock(object, number), 0);
    EXPECT_EQ(service.lock(nullptr, 0), 0);
    service.destroy(object);
    service.destroy(nullptr);
}

TEST(Messages, ReachTheSinkAsOneLine) {
    const auto& service = serviceTable<HostMessages>(HOST_MESSAGES_SERVICE);
    std::vector<std::pair<MessageKind, std::string>> heard;
    setMessageSink(
        [&](MessageKind kind, const std::string& text) { heard.emplace_back(kind, text); });
    service.warning("Settings directory not found", "Default settings not saved!");
    service.error("Out of order", nullptr);
    service.info("Done", "");
    {
        const QuietMessages quiet;
        service.error("Out of order", nullptr);
        std::thread([&] { service.info("From another thread", nullptr); }).join();
    }
    setMessageSink({});
    const decltype(heard) expected = {
        {MessageKind::Warning, "Settings directory not found: Default settings not saved!"},
        {MessageKind::Error, "Out of order"},
        {MessageKind::Info, "Done"},
        {MessageKind::Info, "From another thread"}};
    EXPECT_EQ(heard, expected);
    testing::internal::CaptureStderr();
    service.warning("Careful", "now");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tavora: warning: Careful: now\n");
}

TEST(InstanceUpdate, ReachesTheListener) {
    auto* update = serviceFunction<HostInstanceUpdate>(HOST_INSTANCE_UPDATE_SERVICE);
    int instance = 0, heard = 0;
    setInstanceListener([&](const std::string& className, HostInstance changed) {
        heard += className == "ShaderHandler" && changed == &instance ? 1 : 100;
    });
    update("ShaderHandler", &instance);
    setInstanceListener({});
    update("Nobody listens", &instance);
    EXPECT_EQ(heard, 1);
}

}  // namespace
}  // namespace tavora::studio
