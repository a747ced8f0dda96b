#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tavora::studio {

/// Limits the memory of one scene, in bytes. Memory is counted before it is allocated, so that a
/// small file that describes a huge scene is refused before it exhausts the machine's memory.
/// Any thread.
class MemoryBudget {
  public:
    /// Messages start with `owner`. A `limit` of 0 means half of the machine's memory.
    explicit MemoryBudget(std::string owner, std::uint64_t limit = 0);
    MemoryBudget(const MemoryBudget&) = delete;
    MemoryBudget& operator=(const MemoryBudget&) = delete;

    /// Counts bytes as taken; returns false, and counts nothing, when the limit is exceeded.
    bool tryTake(std::uint64_t bytes) noexcept;
    /// The same, but throws Error, Fault::Scene, that names `what` needs the bytes
    /// ("the texture \"a\"").
    void take(std::uint64_t bytes, std::string_view what);
    void giveBack(std::uint64_t bytes) noexcept;
    std::uint64_t taken() const { return taken_; }

    /// Throws the Error of take().
    [[noreturn]] void refuse(std::string_view what) const;

  private:
    const std::string owner_;
    const std::uint64_t limit_;
    std::atomic<std::uint64_t> taken_{0};
};

/// Memory that one object has taken from a budget, and that is given back when this object ends.
/// One thread.
class MemoryShare {
  public:
    /// Without a budget nothing is counted.
    MemoryShare() = default;
    explicit MemoryShare(std::shared_ptr<MemoryBudget> budget) : budget_(std::move(budget)) {}
    MemoryShare(MemoryShare&& other) noexcept;
    MemoryShare& operator=(MemoryShare&& other) noexcept;
    ~MemoryShare();

    MemoryBudget* budget() const { return budget_.get(); }  ///< null: none

    /// Like MemoryBudget::take().
    void take(std::uint64_t bytes, std::string_view what);

  private:
    std::shared_ptr<MemoryBudget> budget_;
    std::uint64_t bytes_ = 0;
};

/// The bytes of memory that this process may use: the machine's memory, or the limit of its
/// control group if that is less.
std::uint64_t machineMemory();

}  // namespace tavora::studio
