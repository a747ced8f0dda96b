#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>

namespace tavora::studio {

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "tavora-test-XXXXXX";
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& path() const { return path_; }

    std::set<std::string> names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            names.insert(entry.path().filename());
        return names;
    }

  private:
    std::filesystem::path path_;
};

inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline void putBytes(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

}  // namespace tavora::studio
