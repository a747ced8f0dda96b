#include "tests/support/heap.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local bool watching = false;
thread_local int seen = 0;
thread_local int failingNumber = -1;
std::atomic<long> live{0};

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (watching && seen++ == failingNumber) return nullptr;
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr) ++live;
    return memory;
}
void* operator new(std::size_t size) {
    if (void* memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    if (memory != nullptr) --live;
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    operator delete(memory);
}

namespace tavora::testing {

AllocationWatch::AllocationWatch(int failing) {
    seen = 0;
    failingNumber = failing;
    watching = true;
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
