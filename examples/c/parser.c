#include "parser.h"

struct parser {
  lexer source;
  struct token ahead;
  program* code;
  enum error error;
};

static void parse_sum(struct parser* parser, int weakest);

static int strength_of(enum token_kind kind) {
  static const int strengths[] = {
#define AS_STRENGTH(name, sign, strength) [TOKEN_##name] = strength,
      FOR_EACH_OPERATOR(AS_STRENGTH)
#undef AS_STRENGTH
  };
  return kind < ARRAY_LENGTH(strengths) ? strengths[kind] : 0;
}

/* Takes the token ahead and reads the one after it. */
static struct token take(struct parser* parser) {
  struct token taken = parser->ahead;
  parser->ahead = lexer_next(&parser->source);
  return taken;
}

static int emit(struct parser* parser, struct token token) {
  program* code = parser->code;
  if (code->length == ARRAY_LENGTH(code->steps)) {
    parser->error = ERROR_TOO_LONG;
    return 0;
  }
  code->steps[code->length++] = (step){.kind = token.kind, .value = token.value};
  return 1;
}

static void parse_operand(struct parser* parser) {
  struct token token = parser->ahead;
  switch (token.kind) {
    case TOKEN_NUMBER:
    case TOKEN_VARIABLE:
      take(parser);
      emit(parser, token);
      return;
    case TOKEN_SUBTRACT: { /* a sign: 0 - operand */
      struct token zero = {.kind = TOKEN_NUMBER, .value = {.literal = 0}};
      take(parser);
      emit(parser, zero);
      parse_operand(parser);
      emit(parser, token);
      return;
    }
    case TOKEN_OPEN:
      take(parser);
      parse_sum(parser, 1);
      if (parser->error == ERROR_NONE && parser->ahead.kind == TOKEN_CLOSE) {
        take(parser);
        return;
      }
      break;
    default:
      break;
  }
  if (parser->error == ERROR_NONE) parser->error = ERROR_SYNTAX;
}

static void parse_sum(struct parser* parser, int weakest) {
  struct token target = parser->ahead;
  parse_operand(parser);
  while (parser->error == ERROR_NONE && strength_of(parser->ahead.kind) >= weakest) {
    struct token sign = take(parser);
    if (sign.kind == TOKEN_ASSIGN) {
      if (target.kind != TOKEN_VARIABLE) {
        parser->error = ERROR_SYNTAX;
        return;
      }
      sign.value = target.value;
      parse_sum(parser, strength_of(sign.kind));
    } else {
      parse_sum(parser, strength_of(sign.kind) + 1);
    }
    if (parser->error == ERROR_NONE) emit(parser, sign);
  }
}

enum error parse(const char* text, program* code, unsigned* column) {
  struct parser parser = {.code = code, .error = ERROR_NONE};
  code->length = 0;
  lexer_open(&parser.source, text);
  take(&parser);
  parse_sum(&parser, 1);
  if (parser.error == ERROR_NONE && parser.ahead.kind != TOKEN_END) parser.error = ERROR_SYNTAX;
  *column = parser.ahead.column;
  return parser.error;
}
