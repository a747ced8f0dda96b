#include <dlfcn.h>
#include <filesystem>
#include <gtest/gtest.h>

#include "host/handler.h"
#include "host/module.h"
#include "tests/support/fake_host.h"

namespace tavora::testing {
namespace {

/// One loaded copy of the module file, its handler active and one record made.
class LoadedCopy {
  public:
    explicit LoadedCopy(const std::string& name)
        : file_(std::filesystem::path(::testing::TempDir()) / name) {
        std::filesystem::copy_file(TAVORA_MODULE, file_,
                                   std::filesystem::copy_options::overwrite_existing);
        library_ = dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library_ == nullptr) throw std::runtime_error(dlerror());
        const auto* descriptor =
            static_cast<const HostModuleDescriptor*>(dlsym(library_, HOST_MODULE_SYMBOL));
        descriptor->servers[0].activate(6, FakeHost::lookup, &handler, nullptr);
        HostError error = nullptr;
        record = instance.create(nullptr, nullptr, &error);
        render.init(record, 0);
    }
    ~LoadedCopy() {
        render.cleanup(record);
        instance.destroy(record);
        dlclose(library_);
        std::filesystem::remove(file_);
    }
    LoadedCopy(const LoadedCopy&) = delete;
    LoadedCopy& operator=(const LoadedCopy&) = delete;

    void evaluate(HostSample sample) const { handler.evaluate(record, &sample); }

    HostInstanceCallbacks instance = {};
    HostItemCallbacks item = {};
    HostRenderCallbacks render = {};
    HostShaderHandler handler = {&instance, &item, &render, nullptr, nullptr};
    HostInstance record = nullptr;

  private:
    std::filesystem::path file_;
    void* library_ = nullptr;
};

TEST(LoadedModule, EveryCopyHasItsOwnGlobals) {
    FakeHost host;
    const LoadedCopy first("tavora-first.so"), second("tavora-second.so");
    EXPECT_EQ(host.liveMutexes, 2) << "a mutex each";
    first.render.newTime(first.record, 0, 1.5);
    second.render.newTime(second.record, 0, 7.0);
    first.evaluate(upwardSample());
    second.evaluate(upwardSample());
    first.evaluate(upwardSample());
    EXPECT_EQ(host.queryTimes, (std::vector<double>{1.5, 7.0, 1.5}));
}

}  // namespace
}  // namespace tavora::testing
