#pragma once

namespace tavora::testing {

/// Counts this thread's allocations while it lives, and fails the one of number
/// `failing` (counted from 0). One at a time.
struct AllocationWatch {
    explicit AllocationWatch(int failing = -1);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;
    int count() const;
};

/// Allocations of the program that were not freed yet.
long liveAllocations();

}  // namespace tavora::testing
