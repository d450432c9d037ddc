/* Tokens to a program for the machine. */
#ifndef ABACUS_PARSER_H
#define ABACUS_PARSER_H

#include "vm.h"

/* Writes the program of one expression. ERROR_NONE, or what is wrong, *column telling where. */
enum error parse(const char* text, program* code, unsigned* column);

#endif
