#include "tests/support/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local bool watching = false;
thread_local int seen = 0;
thread_local int failingNumber = -1;
std::atomic<long> live{0};

void* allocate(std::size_t size) noexcept {
    if (watching && seen++ == failingNumber) return nullptr;
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr) ++live;
    return memory;
}

void release(void* memory) noexcept {
    if (memory != nullptr) --live;
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* memory = allocate(size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}

namespace tavora::testing {

AllocationWatch::AllocationWatch(int failing) {
    watching = true;
    seen = 0;
    failingNumber = failing;
}

AllocationWatch::~AllocationWatch() {
    watching = false;
}

int AllocationWatch::count() const {
    return seen;
}

long liveAllocations() {
    return live;
}

}  // namespace tavora::testing
