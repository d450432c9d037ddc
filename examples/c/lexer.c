#include "lexer.h"

struct spelling {
  enum token_kind kind;
  char sign;
  const char* name;
};

static const struct spelling spellings[] = {{TOKEN_OPEN, '(', "open"},
                                            {TOKEN_CLOSE, ')', "close"},
#define AS_SPELLING(name, sign, strength) {TOKEN_##name, sign, STRINGISE(name)},
                                            FOR_EACH_OPERATOR(AS_SPELLING)
#undef AS_SPELLING
};

static const struct spelling* find_sign(char sign) {
  for (size_t i = 0; i < ARRAY_LENGTH(spellings); ++i) {
    if (spellings[i].sign == sign) return &spellings[i];
  }
  return NULL;
}

static const char* skip_blanks(const char* text) {
  while (*text == ' ' || *text == '\t') ++text;
  return text;
}

void lexer_open(lexer* source, const char* text) {
  source->text = text;
  source->next = skip_blanks(text);
}

static number read_number(const char** text) {
  number value = 0;
  while (IS_DIGIT(**text)) value = value * 10 + (*(*text)++ - '0');
  return value;
}

struct token lexer_next(lexer* source) {
  struct token token = {.kind = TOKEN_END, .value = {.literal = 0}};
  const char* at = skip_blanks(source->next);
  token.starts_line = at == skip_blanks(source->text);
  token.column = (unsigned)(at - source->text + 1) & 0xffff;

  if (*at == '\0' || *at == '\n') goto done;
  if (IS_DIGIT(*at)) {
    token.kind = TOKEN_NUMBER;
    token.value.literal = read_number(&at);
    goto done;
  }
  if (IS_LETTER(*at)) {
    token.kind = TOKEN_VARIABLE;
    token.value.variable = *at;
  } else {
    const struct spelling* found = find_sign(*at);
    token.kind = found != NULL ? found->kind : TOKEN_UNKNOWN;
  }
  ++at;

done:
  source->next = at;
  TRACE("column %u: %s\n", token.column, token_name(token.kind));
  return token;
}

const char* token_name(enum token_kind kind) {
  switch (kind) {
    case TOKEN_END:
      return "end";
    case TOKEN_NUMBER:
      return "number";
    case TOKEN_VARIABLE:
      return "variable";
    default:
      break;
  }
  for (size_t i = 0; i < ARRAY_LENGTH(spellings); ++i) {
    if (spellings[i].kind == kind) return spellings[i].name;
  }
  return "unknown";
}
