#include "support/FailingMemory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int leftUntilFailure = 0;  // 0: none is to fail

}  // namespace

// Every form is replaced: those of a sanitizer do not call each other, and memory goes back the way it came.
void* operator new(std::size_t size) {
    if (leftUntilFailure != 0 && --leftUntilFailure == 0) throw std::bad_alloc();
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return leftUntilFailure != 0 && --leftUntilFailure == 0 ? nullptr : std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept {
    return operator new(size, nothrow);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace Dravel::Test {

FailingMemory::FailingMemory(int at) {
    leftUntilFailure = at;
}
FailingMemory::~FailingMemory() {
    leftUntilFailure = 0;
}
bool FailingMemory::HasFailed() const {
    return leftUntilFailure == 0;
}

}  // namespace Dravel::Test
