// Faults of another program's function, as the system reports them.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>

#include "platform/ForeignCall.h"

extern "C" int DravelRunForeign(void (*call)(const void*), const void* work);

namespace Dravel {
namespace {

// As in a function of another compiler: saved registers and a frame between the fault and the caller.
__attribute__((noinline)) int Deep(int depth, volatile int* at) {
    return depth == 0 ? *at : Deep(depth - 1, at) + depth;
}

TEST(ForeignCalls, FaultsEndWithThem) {
    auto* const nowhere = reinterpret_cast<volatile int*>(std::uintptr_t{64});
    const struct {
        void (*fail)(volatile int*);
        DWORD code;
    } cases[] = {
        {[](volatile int* at) { Deep(5, at); }, EXCEPTION_ACCESS_VIOLATION},
        {[](volatile int*) { __asm__ __volatile__("ud2"); }, EXCEPTION_ILLEGAL_INSTRUCTION},
        {[](volatile int*) {
             __asm__ __volatile__("xorl %%ecx, %%ecx\n\txorl %%edx, %%edx\n\tdivl %%ecx" ::
                                      : "eax", "ecx", "edx");
         },
         EXCEPTION_INT_DIVIDE_BY_ZERO},
        // What a program of another compiler throws.
        {[](volatile int*) { RaiseException(0xE06D7363, 0, 0, nullptr); }, 0xE06D7363},
    };
    for (const auto& c : cases) {
        for (int again = 0; again < 3; ++again) {
            const ForeignEnd end = CallForeign([&] { c.fail(nowhere); });
            EXPECT_FALSE(end.returned);
            EXPECT_EQ(end.code, c.code);
        }
    }
    EXPECT_TRUE(CallForeign([] {}).returned);
}

// Code of ours that the other program called back: passing it by would leave it half done.
TEST(ForeignCalls, WhatGoesWrongInOurOwnCodeIsNotTheirs) {
    const auto fail = [](const void*) { throw 7; };
    EXPECT_EQ(DravelRunForeign(fail, nullptr), 0);
    bool passed = false;
    ++callsFromOutside;
    try {
        DravelRunForeign(fail, nullptr);
    } catch (int) {
        passed = true;
    }
    --callsFromOutside;
    EXPECT_TRUE(passed);
}

}  // namespace
}  // namespace Dravel
