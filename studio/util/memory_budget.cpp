#include "studio/util/memory_budget.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <limits>
#include <unistd.h>
#include <utility>

#include "studio/util/error.h"

namespace tavora::studio {
namespace {

constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

/// The limit of the control group in a file of the kernel, which is a number or "max".
std::uint64_t groupLimit(const char* file) {
    std::uint64_t bytes = 0;
    return std::ifstream(file) >> bytes ? bytes : kUnlimited;
}

std::string sizeText(std::uint64_t bytes) {
    constexpr double kMega = 1 << 20;
    const double megabytes = static_cast<double>(bytes) / kMega;
    return megabytes < 1024 ? fmt::format("{:.0f} MB", megabytes)
                            : fmt::format("{:.1f} GB", megabytes / 1024);
}

}  // namespace

std::uint64_t machineMemory() {
    const auto pages = static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES));
    const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGE_SIZE));
    // The limits of control groups, versions 2 and 1, in the paths that a container has.
    return std::min({pages * page, groupLimit("/sys/fs/cgroup/memory.max"),
                     groupLimit("/sys/fs/cgroup/memory/memory.limit_in_bytes")});
}

MemoryBudget::MemoryBudget(std::string owner, std::uint64_t limit)
    : owner_(std::move(owner)), limit_(limit > 0 ? limit : machineMemory() / 2) {}

bool MemoryBudget::tryTake(std::uint64_t bytes) noexcept {
    std::uint64_t taken = taken_;
    do {
        if (bytes > limit_ - taken) return false;
    } while (!taken_.compare_exchange_weak(taken, taken + bytes));
    return true;
}

void MemoryBudget::take(std::uint64_t bytes, std::string_view what) {
    if (!tryTake(bytes)) refuse(what);
}

void MemoryBudget::giveBack(std::uint64_t bytes) noexcept {
    taken_ -= bytes;
}

void MemoryBudget::refuse(std::string_view what) const {
    throw Error(Fault::Scene,
                fmt::format("{}: with {} takes more than the {} of memory that a scene may: make "
                            "it smaller, or allow more with --max-memory",
                            owner_, what, sizeText(limit_)));
}

MemoryShare::MemoryShare(MemoryShare&& other) noexcept
    : budget_(std::move(other.budget_)), bytes_(std::exchange(other.bytes_, 0)) {}

MemoryShare& MemoryShare::operator=(MemoryShare&& other) noexcept {
    std::swap(budget_, other.budget_);
    std::swap(bytes_, other.bytes_);
    return *this;
}

MemoryShare::~MemoryShare() {
    if (budget_ != nullptr) budget_->giveBack(bytes_);
}

void MemoryShare::take(std::uint64_t bytes, std::string_view what) {
    if (budget_ == nullptr) return;
    budget_->take(bytes, what);
    bytes_ += bytes;
}

}  // namespace tavora::studio
