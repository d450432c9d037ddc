#pragma once

#include "questions.h"

namespace fe_db_tools {

/// Prints what the question finds for each entity or file of the request, what it finds for these
/// answers, and so on, `depth` steps far, as an indented tree; in JSON a line for each with its
/// depth, and the name of its parent. What was shown before is not repeated.
void printTree(const Request& request, const Question& question, unsigned depth, bool json);

/// Whether the question can have --depth.
bool hasTree(const Question& question);

}  // namespace fe_db_tools
