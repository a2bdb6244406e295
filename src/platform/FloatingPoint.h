// The floating point state that our numbers are read and written under, whatever the program round us does
// with its own.
#pragma once

#include <xmmintrin.h>  // x64, with every compiler

#include <cstdint>

namespace Dravel {

// From construction to destruction this thread rounds to the nearest, keeps numbers near 0 as they are, and
// raises no floating point exception; then everything is as it was before, flags included. Stands where the
// world calls the library, and round calls that let the world run, which may leave another state behind. They
// nest.
class FloatingPointScope {
 public:
    FloatingPointScope() noexcept : vector_(_mm_getcsr()), stack_(StackWord()) {
        if (vector_ != kVector) _mm_setcsr(kVector);
        if (stack_ != kStack) SetStackWord(kStack);
    }
    ~FloatingPointScope() {
        if (_mm_getcsr() != vector_) _mm_setcsr(vector_);
        if (StackWord() != stack_) SetStackWord(stack_);
    }
    FloatingPointScope(const FloatingPointScope&) = delete;
    FloatingPointScope& operator=(const FloatingPointScope&) = delete;

 private:
    // The state in which the processor starts: all exceptions masked, to the nearest, no flag set.
    static constexpr std::uint32_t kVector = 0x1F80;
    static constexpr std::uint16_t kStack = 0x037F;

    // The unit that long double is computed in. A compiler that has no such type leaves it alone.
#ifdef __GNUC__
    static std::uint16_t StackWord() noexcept {
        std::uint16_t word;
        __asm__ __volatile__("fnstcw %0" : "=m"(word));
        return word;
    }
    // The flags first: one that is set would be raised as soon as the word unmasks it.
    static void SetStackWord(std::uint16_t word) noexcept {
        __asm__ __volatile__("fnclex\n\tfldcw %0" : : "m"(word));
    }
#else
    static std::uint16_t StackWord() noexcept {
        return kStack;
    }
    static void SetStackWord(std::uint16_t) noexcept {}
#endif

    std::uint32_t vector_;
    std::uint16_t stack_;
};

}  // namespace Dravel
