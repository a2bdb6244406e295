// A structured exception can be caught by a handler of the stack's frame alone, and GCC has no words for one.
// So the frame is written out: it calls one function under the system's own C handler, whose table names a
// filter and where to go on.
#include "platform/ForeignCall.h"

#include <windows.h>

#include "platform/FloatingPoint.h"

namespace {

int callsAtBegin;  // of callsFromOutside, when the innermost foreign call began
DWORD lastCode;

}  // namespace

extern "C" {

// Runs call(work). 1: it returned; 0: an exception that the filter takes ended it.
int DravelRunForeign(void (*call)(const void*), const void* work);

LONG CALLBACK DravelForeignFilter(EXCEPTION_POINTERS* pointers, void*) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    const DWORD code = record.ExceptionCode;
    const bool debugger = code == EXCEPTION_BREAKPOINT || code == EXCEPTION_SINGLE_STEP;
    if (debugger || code == static_cast<DWORD>(EXCEPTION_STACK_OVERFLOW)) return EXCEPTION_CONTINUE_SEARCH;
    // In code of ours that the other program called: unwinding would pass what it has to destroy.
    if (Dravel::callsFromOutside != callsAtBegin) return EXCEPTION_CONTINUE_SEARCH;
    lastCode = code;
    return EXCEPTION_EXECUTE_HANDLER;
}

#ifdef _MSC_VER
int DravelRunForeign(void (*call)(const void*), const void* work) {
    __try {
        call(work);
        return 1;
    } __except (DravelForeignFilter(GetExceptionInformation(), nullptr)) {
        return 0;
    }
}
#else
__asm__(
    ".text\n"
    ".p2align 4\n"
    ".globl DravelRunForeign\n"
    ".def DravelRunForeign; .scl 2; .type 32; .endef\n"
    ".seh_proc DravelRunForeign\n"
    "DravelRunForeign:\n"
    "  subq $40, %rsp\n"
    "  .seh_stackalloc 40\n"
    "  .seh_endprologue\n"
    "  movq %rcx, %rax\n"
    "  movq %rdx, %rcx\n"
    ".Ldravel_begin:\n"
    "  call *%rax\n"
    "  nop\n"
    ".Ldravel_end:\n"
    "  movl $1, %eax\n"
    "  addq $40, %rsp\n"
    "  ret\n"
    ".Ldravel_caught:\n"
    "  xorl %eax, %eax\n"
    "  addq $40, %rsp\n"
    "  ret\n"
    "  .seh_handler __C_specific_handler, @except\n"
    "  .seh_handlerdata\n"
    "  .long 1\n"
    "  .rva .Ldravel_begin, .Ldravel_end, DravelForeignFilter, .Ldravel_caught\n"
    "  .text\n"
    "  .seh_endproc\n");
#endif
}

namespace Dravel::foreign {

ForeignEnd Run(Call call, const void* work) noexcept {
    const FloatingPointScope whateverItLeaves;
    const int before = callsAtBegin;
    callsAtBegin = callsFromOutside;
    const bool returned = DravelRunForeign(call, work) != 0;
    callsAtBegin = before;
    return {returned, returned ? 0 : lastCode};
}

}  // namespace Dravel::foreign
