#pragma once

namespace tavora::testing {

/// Counts the program's allocations while it lives, and fails the one of number
/// `number` (counted from 0) among those that may. One at a time, one thread.
struct AllocationWatch {
    explicit AllocationWatch(int number = -1) : failing(number) { current = this; }
    ~AllocationWatch() { current = nullptr; }
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    static inline AllocationWatch* current = nullptr;
    int failing;  ///< counts down
    int count = 0;
};

/// Allocations of the program that were not freed yet.
inline long liveAllocations = 0;

}  // namespace tavora::testing
