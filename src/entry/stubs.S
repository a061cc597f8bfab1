/* One stub an export: an indirect jump through the export's own slot of the entry table. Where the processor has no
 * addressing relative to itself and the loader may not write into code, the stub finds its own address first; on Windows
 * the loader puts the slot's address into the jump. */

    .text

#ifdef __x86_64__
#    define LUM_EXPORT(ordinal, name, ...)              \
        .p2align 4;                                     \
        .globl name;                                    \
        .type name, @function;                          \
        name: jmp *(lumEntryTable + 8 * (ordinal - 1))(%rip); \
        .size name, . - name;
#elif defined(_WIN32)
#    define LUM_EXPORT(ordinal, name, ...)              \
        .p2align 3;                                     \
        .globl _##name;                                 \
        .def _##name; .scl 2; .type 32; .endef;         \
        _##name: jmp *(_lumEntryTable + 4 * (ordinal - 1));
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

#ifdef __ELF__
    .section .note.GNU-stack, "", @progbits
#endif
