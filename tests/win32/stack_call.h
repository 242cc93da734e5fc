/*
 * Calls by hand: arguments as the 32-bit words that they are on the stack, at a chosen alignment.
 */
#ifndef STACK_CALL_H
#define STACK_CALL_H

#include <stdint.h>

typedef struct StackCall {
  void* function;
  const uint32_t* words; /* the arguments, first one first */
  uint32_t count;
  uint32_t slack;         /* bytes by which the stack misses a multiple of 16 before the pushes */
  uint32_t before;        /* stack pointer before the pushes */
  uint32_t after;         /* and after the return */
  uint32_t result;        /* eax */
  uint32_t keptRegisters; /* esi and edi, which a callee preserves: 0 when both came back */
  uint32_t realExpected;  /* non-zero: the result is a double, in st(0) */
  uint32_t padding;
  double real;
} StackCall;

void __cdecl MakeStackCall(StackCall* call);

#endif /* STACK_CALL_H */
