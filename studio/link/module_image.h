#pragma once

#include <filesystem>

#include "host/module.h"

namespace tavora::studio {

/// One loaded image of a module file. Every ModuleImage of the same file has
/// globals of its own, because the loader gets a private copy of the file; a
/// module must therefore not look for files beside itself ($ORIGIN).
/// Any thread; not moved while loaded.
class ModuleImage {
  public:
    /// Loads `file` and checks its descriptor. Throws Error, Fault::Module: no such file,
    /// not a loadable module, no or a foreign descriptor.
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
    int memory_ = -1;  ///< kept open: its number is part of the name that the loader knows
    void* image_ = nullptr;
    const HostModuleDescriptor* descriptor_ = nullptr;
};

}  // namespace tavora::studio
