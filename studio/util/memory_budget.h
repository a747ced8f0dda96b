#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tavora::studio {

/// How much memory one scene may take, counted before it is taken, so that a small
/// file which stands for a huge scene is refused instead of bringing the machine to
/// its knees. Bytes. Any thread.
class MemoryBudget {
  public:
    /// `owner` is what messages open with; `most` of 0 is half of the machine's memory.
    explicit MemoryBudget(std::string owner, std::uint64_t most = 0);
    MemoryBudget(const MemoryBudget&) = delete;
    MemoryBudget& operator=(const MemoryBudget&) = delete;

    /// False, and nothing is counted, where so much is not left.
    bool tryTake(std::uint64_t bytes) noexcept;
    /// Throws Fault::Scene that names `what`, which needs the bytes ("the texture \"a\"").
    void take(std::uint64_t bytes, std::string_view what);
    void giveBack(std::uint64_t bytes) noexcept;
    std::uint64_t taken() const { return taken_; }

    /// What take() throws.
    [[noreturn]] void refuse(std::string_view what) const;

  private:
    const std::string owner_;
    const std::uint64_t most_;
    std::atomic<std::uint64_t> taken_{0};
};

/// What one part of a program holds of a budget, given back when it ends. One thread.
class MemoryShare {
  public:
    /// Of no budget: whatever is taken, nothing is counted.
    MemoryShare() = default;
    explicit MemoryShare(std::shared_ptr<MemoryBudget> budget) : budget_(std::move(budget)) {}
    MemoryShare(MemoryShare&& other) noexcept;
    MemoryShare& operator=(MemoryShare&& other) noexcept;
    ~MemoryShare();

    MemoryBudget* budget() const { return budget_.get(); }  ///< null: none

    /// As MemoryBudget's.
    void take(std::uint64_t bytes, std::string_view what);

  private:
    std::shared_ptr<MemoryBudget> budget_;
    std::uint64_t bytes_ = 0;
};

/// Bytes that this process may have: the machine's memory, or less where its control
/// group has less.
std::uint64_t machineMemory();

}  // namespace tavora::studio
