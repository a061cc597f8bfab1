/* One stub an export: an indirect jump through the export's own slot of the entry table, which finds its own
 * address first where the processor has no addressing relative to it. */

    .text

#ifdef __x86_64__
#    define LUM_EXPORT(ordinal, name, ...)              \
        .p2align 4;                                     \
        .globl name;                                    \
        .type name, @function;                          \
        name: jmp *(lumEntryTable + 8 * (ordinal - 1))(%rip); \
        .size name, . - name;
#else
    .p2align 4
    .type lumProgramCounter, @function
lumProgramCounter:
    movl (%esp), %eax
    ret
    .size lumProgramCounter, . - lumProgramCounter

#    define LUM_EXPORT(ordinal, name, ...)              \
        .p2align 4;                                     \
        .globl name;                                    \
        .type name, @function;                          \
        name: call lumProgramCounter;                   \
        .Lhere##ordinal: jmp *(lumEntryTable + 4 * (ordinal - 1) - .Lhere##ordinal)(%eax); \
        .size name, . - name;
#endif

#include "entry/exports.inc"

    .section .note.GNU-stack, "", @progbits
