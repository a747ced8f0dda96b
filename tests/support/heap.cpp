#include "tests/support/heap.h"

#include <cstdlib>
#include <new>

using tavora::testing::AllocationWatch, tavora::testing::liveAllocations;

void* operator new(std::size_t size) {
    if (AllocationWatch::current != nullptr) ++AllocationWatch::current->count;
    void* memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    ++liveAllocations;
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    AllocationWatch* watch = AllocationWatch::current;
    if (watch == nullptr || watch->failing-- != 0) return operator new(size);
    ++watch->count;
    return nullptr;
}
void operator delete(void* memory) noexcept {
    if (memory != nullptr) --liveAllocations;
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    operator delete(memory);
}
