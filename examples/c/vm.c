#include "vm.h"

/* Deepest use of the stack; more than a program can need. */
#define STACK_SIZE LONGEST_PROGRAM
#define PUSH(number_) (stack[depth++] = (number_))
#define POP() (stack[--depth])

static number variables[VARIABLES];

typedef number (*operation)(number left, number right);

#define DEFINE_OPERATION(name, sign) \
  static number apply_##name(number left, number right) { return left sign right; }
DEFINE_OPERATION(ADD, +)
DEFINE_OPERATION(SUBTRACT, -)
DEFINE_OPERATION(MULTIPLY, *)
DEFINE_OPERATION(DIVIDE, /)
DEFINE_OPERATION(REMAINDER, %)
#undef DEFINE_OPERATION

static number apply_ASSIGN(number left, number right) {
  (void)left;
  return right;
}

static operation operation_of(enum token_kind kind) {
  switch (kind) {
#define AS_CASE(name, sign, strength) \
  case TOKEN_##name:                  \
    return apply_##name;
    FOR_EACH_OPERATOR(AS_CASE)
#undef AS_CASE
    default:
      return NULL;
  }
}

static number* slot(char name) { return &variables[name - 'a']; }

number vm_variable(char name) { return *slot(name); }

int fit_digits(int wanted) { return CLAMP(wanted, 1, 20); }

struct outcome vm_run(const program* code) {
  number stack[STACK_SIZE];
  size_t depth = 0;
  struct outcome outcome = {.error = ERROR_NONE, .value = 0};

  for (size_t i = 0; i < code->length; ++i) {
    const step* now = &code->steps[i];
    if (now->kind == TOKEN_NUMBER) {
      PUSH(now->value.literal);
      continue;
    }
    if (now->kind == TOKEN_VARIABLE) {
      PUSH(vm_variable(now->value.variable));
      continue;
    }
    if (depth < 2) goto underflow;
    number right = POP();
    number left = POP();
    if (right == 0 && (now->kind == TOKEN_DIVIDE || now->kind == TOKEN_REMAINDER)) {
      outcome.error = ERROR_DIVISION;
      return outcome;
    }
    PUSH(operation_of(now->kind)(left, right));
    if (now->kind == TOKEN_ASSIGN) *slot(now->value.variable) = right;
  }
  if (depth != 1) goto underflow;
  outcome.value = POP();
  return outcome;

underflow:
  outcome.error = ERROR_STACK;
  return outcome;
}
