/* Text to tokens. */
#ifndef ABACUS_LEXER_H
#define ABACUS_LEXER_H

#include "common.h"

/* One line per operator: name, character, binding strength. The kinds of token, the parser's
   table and the machine's table are all made from this list. */
#define FOR_EACH_OPERATOR(USE) \
  USE(ASSIGN, '=', 1)          \
  USE(ADD, '+', 2)             \
  USE(SUBTRACT, '-', 2)        \
  USE(MULTIPLY, '*', 3)        \
  USE(DIVIDE, '/', 3)          \
  USE(REMAINDER, '%', 3)

enum token_kind {
  TOKEN_END,
  TOKEN_NUMBER,
  TOKEN_VARIABLE,
  TOKEN_OPEN,
  TOKEN_CLOSE,
#define AS_KIND(name, sign, strength) TOKEN_##name,
  FOR_EACH_OPERATOR(AS_KIND)
#undef AS_KIND
      TOKEN_UNKNOWN
};

union token_value {
  number literal; /* TOKEN_NUMBER */
  char variable;  /* TOKEN_VARIABLE */
};

struct token {
  unsigned kind : 5; /* enum token_kind */
  unsigned starts_line : 1;
  unsigned column : 16;
  union token_value value;
};

/* A text being read; next points after the last token. */
typedef struct lexer {
  const char* text;
  const char* next;
} lexer;

void lexer_open(lexer* source, const char* text);
struct token lexer_next(lexer* source);
const char* token_name(enum token_kind kind);

#endif
