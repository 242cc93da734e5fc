#include "stack_call.h"

#include <stddef.h>

/* The assembly below reads and writes the record by these offsets. */
typedef char
    CheckLayout[offsetof(StackCall, count) == 8 && offsetof(StackCall, slack) == 12 &&
                        offsetof(StackCall, before) == 16 && offsetof(StackCall, after) == 20 &&
                        offsetof(StackCall, result) == 24 &&
                        offsetof(StackCall, keptRegisters) == 28 &&
                        offsetof(StackCall, realExpected) == 32 && offsetof(StackCall, real) == 40
                    ? 1
                    : -1];

__asm__(
    "  .text\n"
    "  .globl _MakeStackCall\n"
    "_MakeStackCall:\n"
    "  pushl %ebp\n"
    "  movl %esp, %ebp\n"
    "  pushl %ebx\n"
    "  pushl %esi\n"
    "  pushl %edi\n"
    "  movl 8(%ebp), %ebx\n"
    "  andl $-16, %esp\n"
    "  subl 12(%ebx), %esp\n"
    "  movl %esp, 16(%ebx)\n"
    "  movl 4(%ebx), %esi\n"
    "  movl 8(%ebx), %ecx\n"
    "1: testl %ecx, %ecx\n"
    "  jz 2f\n"
    "  pushl -4(%esi,%ecx,4)\n"
    "  decl %ecx\n"
    "  jmp 1b\n"
    "2: movl $0x13579bdf, %esi\n"
    "  movl $0x2468ace0, %edi\n"
    "  call *(%ebx)\n"
    "  movl %esp, 20(%ebx)\n"
    "  movl %eax, 24(%ebx)\n"
    "  subl $0x13579bdf, %esi\n"
    "  subl $0x2468ace0, %edi\n"
    "  orl %esi, %edi\n"
    "  movl %edi, 28(%ebx)\n"
    "  cmpl $0, 32(%ebx)\n"
    "  je 3f\n"
    "  fstpl 40(%ebx)\n"
    "3: leal -12(%ebp), %esp\n"
    "  popl %edi\n"
    "  popl %esi\n"
    "  popl %ebx\n"
    "  popl %ebp\n"
    "  ret\n");
