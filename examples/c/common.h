/* What every file of the calculator uses. */
#ifndef ABACUS_COMMON_H
#define ABACUS_COMMON_H

#include <stddef.h>
#include <stdio.h>

#define ABACUS_MAJOR 1
#define ABACUS_MINOR 4

/* Two steps, so that a macro given as the argument is expanded first. */
#define STRINGISE_AS_IS(text) #text
#define STRINGISE(text) STRINGISE_AS_IS(text)
#define ABACUS_VERSION STRINGISE(ABACUS_MAJOR) "." STRINGISE(ABACUS_MINOR)

#define LONGEST_PROGRAM 0x40
#define VARIABLES ('z' - 'a' + 1)
#define LONGEST_NAME 31 /* names have been single letters since 1.2 */

#define ARRAY_LENGTH(array) (sizeof(array) / sizeof((array)[0]))
#define MIN(a, b) ((a) < (b) ? (a) : (b))
#define MAX(a, b) ((a) > (b) ? (a) : (b))
#define CLAMP(value, low, high) MIN(MAX(value, low), high)
#define IS_BETWEEN(c, first, last) ((c) >= (first) && (c) <= (last))
#define IS_DIGIT(c) IS_BETWEEN(c, '0', '9')
#define IS_LETTER(c) IS_BETWEEN(c, 'a', 'z')

/* The level comes from the command line of the compiler. */
#if defined(ABACUS_TRACE) && ABACUS_TRACE > 0
#define TRACE(...) fprintf(stderr, "abacus: " __VA_ARGS__)
#else
#define TRACE(...) ((void)0)
#endif

typedef long number;

/* Why an expression has no value; 0 is success. */
enum error { ERROR_NONE, ERROR_SYNTAX = 10, ERROR_TOO_LONG, ERROR_DIVISION, ERROR_STACK };

#endif
