#include "history.h"

_Static_assert(HISTORY_SIZE > 0, "the ring needs a place");

static size_t place(size_t index) { return index % HISTORY_SIZE; }

size_t history_enter(history* log, number result) {
  log->ring[place(log->count++)] = result;
  return MIN(log->count, HISTORY_SIZE);
}

void history_each(const history* log, void (*visit)(size_t index, number result)) {
  size_t first = log->count > HISTORY_SIZE ? log->count - HISTORY_SIZE : 0;
  for (size_t i = first; i < log->count; ++i) visit(i + 1, log->ring[place(i)]);
}
