#pragma once

#include <climits>

namespace tavora::testing {

/// Counts this thread's allocations while it lives, and fails every one from
/// number `allowed` (counted from 0) on. Of two at a time the inner one counts.
class AllocationWatch {
  public:
    explicit AllocationWatch(int allowed = INT_MAX);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    int count() const;
};

/// Allocations of the program that were not freed yet.
long liveAllocations();

}  // namespace tavora::testing
