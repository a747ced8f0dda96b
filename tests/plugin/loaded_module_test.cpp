#include <dlfcn.h>
#include <filesystem>
#include <gtest/gtest.h>

#include "host/handler.h"
#include "host/module.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

/// A copy of the module file, loaded, its handler active, one record in a pass.
struct LoadedCopy {
    explicit LoadedCopy(const char* name) : file(::testing::TempDir() + name) {
        std::filesystem::copy_file(TAVORA_MODULE, file,
                                   std::filesystem::copy_options::overwrite_existing);
        library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) throw std::runtime_error(dlerror());
        const void* symbol = dlsym(library, HOST_MODULE_SYMBOL);
        static_cast<const HostModuleDescriptor*>(symbol)->servers[0].activate(6, FakeHost::lookup,
                                                                              &handler, nullptr);
        HostError error = nullptr;
        record = instance.create(nullptr, nullptr, &error);
        render.init(record, 0);
    }
    ~LoadedCopy() {
        render.cleanup(record);
        instance.destroy(record);
        dlclose(library);
        std::filesystem::remove(file);
    }
    LoadedCopy(const LoadedCopy&) = delete;
    LoadedCopy& operator=(const LoadedCopy&) = delete;

    std::string file;
    void* library = nullptr;
    HostInstanceCallbacks instance = {};
    HostItemCallbacks item = {};
    HostRenderCallbacks render = {};
    HostShaderHandler handler = {&instance, &item, &render, nullptr, nullptr};
    HostInstance record = nullptr;
};

TEST(LoadedModule, EveryCopyHasItsOwnGlobals) {
    FakeHost host;
    const LoadedCopy first("tavora-first.so"), second("tavora-second.so");
    EXPECT_EQ(host.liveMutexes, 2) << "a mutex each";
    first.render.newTime(first.record, 0, 1.5);
    second.render.newTime(second.record, 0, 7.0);
    for (const LoadedCopy* copy : {&first, &second, &first}) {
        HostSample sample = upwardSample();
        copy->handler.evaluate(copy->record, &sample);
    }
    EXPECT_EQ(host.queryTimes, (std::vector<double>{1.5, 7.0, 1.5}));
}

}  // namespace
}  // namespace tavora::testing
