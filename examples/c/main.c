/* abacus: a desk calculator for whole numbers. Each argument is an expression; without arguments
   it works through a few of its own. */
#include "history.h"
#include "parser.h"

#define COMPLAIN(format, ...) fprintf(stderr, "abacus: " format "\n", __VA_ARGS__)

static const char* const examples[] = {
    "6 * 7", "x = (1 + 2) * 3", "y = x = x * x - 1", "-x % 7 + y / 3", "2 + 3 * (4 - 5) * 6",
};

static int digits = 6;

static const char* reason(enum error error) {
  switch (error) {
    case ERROR_SYNTAX:
      return "this is no expression";
    case ERROR_TOO_LONG:
      return "the expression is too long";
    case ERROR_DIVISION:
      return "division by zero";
    default:
      return "an operand is missing";
  }
}

static void show(size_t index, number result) { printf("  #%zu %*ld\n", index, digits, result); }

/* Lets the columns grow with the widest result. */
static void widen(number result) {
  int needed = 1;
  for (number rest = result; rest != 0; rest /= 10) ++needed;
  /* A mistake, left in to be found: fit_digits changes nothing, and its answer is dropped. */
  fit_digits(needed);
  if (needed > digits) digits = needed;
}

static int calculate(const char* text, history* log) {
  program code;
  unsigned column = 0;
  enum error error = parse(text, &code, &column);
  if (error != ERROR_NONE) {
    COMPLAIN("%s: column %u: %s", text, column, reason(error));
    return 0;
  }
  struct outcome outcome = vm_run(&code);
  if (outcome.error != ERROR_NONE) {
    COMPLAIN("%s: %s", text, reason(outcome.error));
    return 0;
  }
  widen(outcome.value);
  history_enter(log, outcome.value);
  printf("%s = %ld\n", text, outcome.value);
  return 1;
}

int main(int argc, char** argv) {
  history log = {.count = 0};
  int failures = 0;

  printf("abacus %s\n", ABACUS_VERSION);
  if (argc > 1) {
    for (int i = 1; i < argc; ++i) failures += !calculate(argv[i], &log);
  } else {
    for (size_t i = 0; i < ARRAY_LENGTH(examples); ++i) failures += !calculate(examples[i], &log);
  }
  puts("latest results:");
  history_each(&log, show);
  return failures == 0 ? 0 : 1;
}
