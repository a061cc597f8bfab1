/* Every export again, for the digests to call: each goes on to its implementation with a stack that is aligned to four
 * bytes only, as old hosts of 32 bits have it. The three places between boundaries of 16 bytes take it in rotation. */

/* No export takes more words of arguments. */
#define ARGUMENT_WORDS 40

#ifdef _WIN32
#    define SYMBOL(name) _##name
#    define ADDRESS(name) name
#else
#    define SYMBOL(name) name
#    define ADDRESS(name) name - .Lhere(%ebx)
#endif

    .data
    .p2align 2
misalignment:
    .long 0

    .text
/* eax: the place of the slot in the entry table. The arguments are copied, and the copy is the callee's. */
callImplementation:
    pushl %ebp
    movl %esp, %ebp
    pushl %ebx
    pushl %esi
    pushl %edi
    call .Lhere
.Lhere:
    popl %ebx
    movl ADDRESS(misalignment), %edx
    addl $4, %edx
    cmpl $16, %edx
    jb .Lchosen
    movl $4, %edx
.Lchosen:
    movl %edx, ADDRESS(misalignment)
    subl $(4 * ARGUMENT_WORDS + 16), %esp
    andl $-16, %esp
    addl %edx, %esp
    leal 8(%ebp), %esi
    movl %esp, %edi
    movl $ARGUMENT_WORDS, %ecx
    cld
    rep movsl
    leal ADDRESS(SYMBOL(lumEntryTable)), %edx
    call *(%edx, %eax)
    leal -12(%ebp), %esp
    popl %edi
    popl %esi
    popl %ebx
    popl %ebp
    ret

#define LUM_EXPORT(ordinal, name, ...)   \
    .globl SYMBOL(name);                 \
    SYMBOL(name):                        \
        movl $(4 * (ordinal - 1)), %eax; \
        jmp callImplementation;

#include "entry/exports.inc"

#ifdef __ELF__
    .section .note.GNU-stack, "", @progbits
#endif
