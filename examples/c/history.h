/* The latest results, in a ring. */
#ifndef ABACUS_HISTORY_H
#define ABACUS_HISTORY_H

#include "common.h"

#ifndef HISTORY_SIZE
#define HISTORY_SIZE 16
#endif

typedef struct history {
  number ring[HISTORY_SIZE];
  size_t count; /* results ever entered */
} history;

/* Answers how many results the ring holds now. */
size_t history_enter(history* log, number result);
/* Calls visit for each result that is still there, the oldest first. */
void history_each(const history* log, void (*visit)(size_t index, number result));

#endif
