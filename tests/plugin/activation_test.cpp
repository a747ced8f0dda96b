#include "host/handler.h"
#include "host/interface.h"
#include "host/module.h"
#include "persist/state_block.h"
#include "plugin/record/services.h"
#include "tests/support/fake_host.h"

extern "C" const HostModuleDescriptor _mod_descrip;

namespace tavora::testing {
namespace {

struct HandlerRecord {
    HostInstanceCallbacks instance = {};
    HostItemCallbacks item = {};
    HostRenderCallbacks render = {};
    HostShaderHandler handler = {&instance, &item, &render, nullptr, nullptr};

    int activate(int version) {
        return _mod_descrip.servers[0].activate(version, FakeHost::lookup, &handler, nullptr);
    }
};

TEST(Activation, DescriptorNamesBothClasses) {
    EXPECT_EQ(_mod_descrip.sync, 0x04121994u);
    EXPECT_EQ(_mod_descrip.version, 3u);
    EXPECT_EQ(_mod_descrip.machine, 0x400u);
    void* token = _mod_descrip.startup();
    EXPECT_EQ(token, identity<void*>(4));
    _mod_descrip.shutdown(token);
    const HostServerRecord* server = _mod_descrip.servers;
    EXPECT_STREQ(server[0].className, "ShaderHandler");
    EXPECT_STREQ(server[1].className, "ShaderInterface");
    EXPECT_STREQ(server[0].serverName, "TAVO");
    EXPECT_STREQ(server[1].serverName, "TAVO");
    EXPECT_EQ(bytesOf(server[2]), bytesOf(HostServerRecord{}));
}

TEST(Activation, HandlerNeedsItsServicesBeforeItsVersion) {
    FakeHost host;
    HandlerRecord().activate(6);
    const Names services = host.lookedUp;
    EXPECT_EQ(services.size(), 9u);
    for (const std::string& service : services) {
        const bool optional = service.rfind("LW ", 0) == 0;
        host.missingServices = {service};
        EXPECT_EQ(HandlerRecord().activate(5), optional ? 1 : 2) << service;
        EXPECT_EQ(HandlerRecord().activate(6), optional ? 0 : 2) << service;
    }
    host.missingServices.clear();
    mtutil = nullptr;
    HandlerRecord record;
    EXPECT_EQ(record.activate(7), 1);
    EXPECT_NE(mtutil, nullptr) << "acquired all the same";
    EXPECT_EQ(bytesOf(record.instance), bytesOf(HostInstanceCallbacks{}));
    EXPECT_EQ(bytesOf(record.render), bytesOf(HostRenderCallbacks{}));
    EXPECT_TRUE(!record.handler.evaluate && !record.handler.flags);
}

TEST(Activation, HandlerFillsWhatTheHostCalls) {
    FakeHost host;
    HandlerRecord record;
    record.instance.privateData = &host;
    ASSERT_EQ(record.activate(6), 0);
    EXPECT_EQ(record.instance.privateData, &host);
    EXPECT_TRUE(!record.item.itemsUsed && !record.item.itemsRenumbered);
    EXPECT_TRUE(record.instance.load == Load && record.instance.save == Save);

    HostError error = nullptr;
    HostInstance first = record.instance.create(nullptr, nullptr, &error);
    HostInstance second = record.instance.create(nullptr, nullptr, &error);
    EXPECT_EQ(record.instance.copy(second, first), nullptr);
    EXPECT_STREQ(record.instance.descriptionLine(first), "Tavora v1.1");
    EXPECT_NE(record.instance.descriptionLine(first), record.instance.descriptionLine(second));
    EXPECT_EQ(record.handler.flags(first), 0x41Eu);
    record.render.init(first, 0);
    EXPECT_EQ(record.render.newTime(first, 1, 0.5), nullptr);
    HostSample sample = upwardSample();
    record.handler.evaluate(first, &sample);
    EXPECT_EQ(colorOf(sample), (Vec{0, 0, 0}));
    EXPECT_EQ(host.queryTimes, std::vector<double>{0.5});
    record.render.cleanup(first);
    EXPECT_EQ(host.liveMutexes, 0);
    record.instance.destroy(first);
    record.instance.destroy(second);
}

TEST(Activation, InterfaceOffersThePanelWhereItCanListLights) {
    FakeHost host;
    const HostShaderInterface before = {identity<void*>(8), identity<HostPanelId>(9),
                                        [](HostInstance) -> HostError { return nullptr; }, nullptr};
    HostShaderInterface record = before;
    const auto activate = [&](int version) {
        return _mod_descrip.servers[1].activate(version, FakeHost::lookup, &record, nullptr);
    };
    global = nullptr;
    EXPECT_EQ(activate(3), 1);
    EXPECT_EQ(activate(5), 1);
    EXPECT_EQ(bytesOf(record), bytesOf(before));
    EXPECT_EQ(global, nullptr);
    EXPECT_EQ(activate(4), 0);
    EXPECT_EQ(record.instance, before.instance);
    EXPECT_TRUE(!record.panel && record.options != nullptr && !record.command);
    EXPECT_EQ(global, FakeHost::lookup);
    host.missingServices = {"LW Item Info 5"};
    acquireServices(FakeHost::lookup);
    EXPECT_EQ(activate(4), 0);
    EXPECT_EQ(record.options, nullptr);
}

}  // namespace
}  // namespace tavora::testing
