#include "studio/link/segment_extents.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <link.h>
#include <unistd.h>

namespace tavora::studio {
namespace {

constexpr std::uint64_t kBeyondAnyFile = std::numeric_limits<std::uint64_t>::max();

template <class Part>
bool readAt(int descriptor, std::uint64_t offset, Part& part) {
    return ::pread(descriptor, &part, sizeof part, static_cast<off_t>(offset)) ==
           static_cast<ssize_t>(sizeof part);
}

std::uint64_t sum(std::uint64_t offset, std::uint64_t size) {
    return size > kBeyondAnyFile - offset ? kBeyondAnyFile : offset + size;
}

}  // namespace

std::uint64_t minModuleSize(int descriptor) {
    constexpr unsigned char kOwnClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    ElfW(Ehdr) header{};
    if (!readAt(descriptor, 0, header)) return 0;
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return 0;
    if (header.e_ident[EI_CLASS] != kOwnClass) return 0;
    std::uint64_t minSize = 0;
    for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
        const std::uint64_t headerOffset = header.e_phoff + i * sizeof(ElfW(Phdr));
        ElfW(Phdr) segment{};
        if (!readAt(descriptor, headerOffset, segment)) return sum(headerOffset, sizeof segment);
        minSize = std::max(minSize, sum(segment.p_offset, segment.p_filesz));
    }
    return minSize;
}

}  // namespace tavora::studio
