/* A machine with a stack: runs what the parser has written. */
#ifndef ABACUS_VM_H
#define ABACUS_VM_H

#include "lexer.h"

/* One step of a program: a number, a variable or an operator. */
typedef struct step {
  enum token_kind kind;
  union token_value value;
} step;

typedef struct program {
  step steps[LONGEST_PROGRAM];
  size_t length;
} program;

/* The value of a program, or why it has none. */
struct outcome {
  enum error error;
  number value;
};

struct outcome vm_run(const program* code);
number vm_variable(char name);

/* Brings a number of digits into the range that the output can show. */
int fit_digits(int wanted);

#endif
