#include <gtest/gtest.h>

#include "host/handler.h"
#include "host/interface.h"
#include "host/module.h"
#include "persist/state_block.h"
#include "plugin/services.h"
#include "tests/support/fake_host.h"

extern "C" const HostModuleDescriptor _mod_descrip;

namespace tavora::testing {
namespace {

const Names serviceOrder = {"MultiThreading Utilities 2",
                            "LW Item Info 5",
                            "LW Light Info 5",
                            "Info Messages 2",
                            "Directory Info",
                            "File IO 2",
                            "Instance Update",
                            "Surface Functions 4",
                            "Texture Functions 3"};

struct HandlerRecord {
    HostInstanceCallbacks instance = {};
    HostItemCallbacks item = {};
    HostRenderCallbacks render = {};
    HostShaderHandler handler = {&instance, &item, &render, nullptr, nullptr};

    int activate(int version) {
        return _mod_descrip.servers[0].activate(version, FakeHost::lookup, &handler, nullptr);
    }
    bool untouched() const {
        return !instance.create && !instance.destroy && !instance.copy && !instance.load &&
               !instance.save && !instance.descriptionLine && !render.init && !render.cleanup &&
               !render.newTime && !handler.evaluate && !handler.flags;
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
    for (const char* name : {"ShaderHandler", "ShaderInterface"}) {
        EXPECT_STREQ(server->className, name);
        EXPECT_STREQ(server->serverName, "TAVO");
        EXPECT_EQ(server->tagInfo, nullptr);
        ++server;
    }
    EXPECT_TRUE(!server->className && !server->serverName && !server->activate);
}

TEST(Activation, HandlerNeedsItsServicesBeforeItsVersion) {
    FakeHost host;
    for (const std::string& service : serviceOrder) {
        const bool optional = service == "LW Item Info 5" || service == "LW Light Info 5";
        host.missingServices = {service};
        HandlerRecord record;
        EXPECT_EQ(record.activate(5), optional ? 1 : 2) << service;
        EXPECT_TRUE(record.untouched());
        EXPECT_EQ(record.activate(6), optional ? 0 : 2) << service;
    }
    host.missingServices.clear();
    mtutil = nullptr;
    for (const int version : {5, 7}) {
        HandlerRecord record;
        host.lookedUp.clear();
        EXPECT_EQ(record.activate(version), 1);
        EXPECT_TRUE(record.untouched());
        EXPECT_EQ(host.lookedUp, serviceOrder);
        EXPECT_NE(mtutil, nullptr) << "acquired all the same";
    }
}

TEST(Activation, HandlerFillsWhatTheHostCalls) {
    FakeHost host;
    HandlerRecord record;
    record.instance.privateData = &host;
    ASSERT_EQ(record.activate(6), 0);
    EXPECT_EQ(record.instance.privateData, &host);
    EXPECT_TRUE(!record.item.itemsUsed && !record.item.itemsRenumbered);

    HostError error = nullptr;
    HostInstance first = record.instance.create(nullptr, nullptr, &error);
    HostInstance second = record.instance.create(nullptr, nullptr, &error);
    EXPECT_EQ(error, nullptr);
    const char* line = record.instance.descriptionLine(first);
    EXPECT_STREQ(line, "Tavora v1.1");
    EXPECT_NE(line, record.instance.descriptionLine(second));
    EXPECT_EQ(record.handler.flags(first), 0x41Eu);
    EXPECT_EQ(record.instance.copy(second, first), nullptr);
    EXPECT_TRUE(record.instance.load == Load && record.instance.save == Save);
    EXPECT_EQ(record.render.init(first, 0), nullptr);
    EXPECT_EQ(record.render.newTime(first, 1, 0.5), nullptr);
    HostSample sample = upwardSample();
    record.handler.evaluate(first, &sample);
    EXPECT_EQ(colorOf(sample), (Vec{0, 0, 0}));
    record.render.cleanup(first);
    EXPECT_EQ(host.liveMutexes, 0);
    record.instance.destroy(first);
    record.instance.destroy(second);
}

TEST(Activation, InterfaceOffersNoOptionsYet) {
    FakeHost host;
    const auto options = [](HostInstance) -> HostError { return nullptr; };
    const HostShaderInterface before = {identity<void*>(8), identity<HostPanelId>(9), options,
                                        nullptr};
    HostShaderInterface record = before;
    const auto activate = [&](int version) {
        return _mod_descrip.servers[1].activate(version, FakeHost::lookup, &record, nullptr);
    };
    global = nullptr;
    EXPECT_EQ(activate(3), 1);
    EXPECT_EQ(activate(5), 1);
    EXPECT_EQ(record.panel, before.panel);
    EXPECT_EQ(global, nullptr);
    EXPECT_EQ(activate(4), 0);
    EXPECT_EQ(record.instance, before.instance);
    EXPECT_TRUE(!record.panel && !record.options && !record.command);
    EXPECT_EQ(global, FakeHost::lookup);
}

}  // namespace
}  // namespace tavora::testing
