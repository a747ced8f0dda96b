#pragma once

#include <filesystem>

#include "host/module.h"

namespace tavora::studio {

/// A loaded image of a module file. Every ModuleImage of the same file has its own globals, because
/// the loader gets a private copy of the file; so a module must not search for files relative to
/// itself ($ORIGIN). Any thread.
class ModuleImage {
  public:
    /// Loads `file` and checks its descriptor. Throws Error, Fault::Module, when there is no such
    /// file, it cannot be loaded, or its descriptor is missing or made for another host.
    explicit ModuleImage(const std::filesystem::path& file);
    ~ModuleImage();
    ModuleImage(const ModuleImage&) = delete;
    ModuleImage& operator=(const ModuleImage&) = delete;

    const std::filesystem::path& file() const { return file_; }
    const HostModuleDescriptor& descriptor() const { return *descriptor_; }

  private:
    void load();
    void* loadFromMemory();
    void* loadFromTemporaryFile();
    void findDescriptor();

    std::filesystem::path file_;
    int memory_ =
        -1;  ///< descriptor; stays open, since its number is part of the path that was loaded
    void* image_ = nullptr;
    const HostModuleDescriptor* descriptor_ = nullptr;
};

}  // namespace tavora::studio
