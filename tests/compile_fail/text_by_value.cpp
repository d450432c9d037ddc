#include "fe_database/compilation_database/column_value.h"

using namespace orvalesca::databases_merger;

/// Must not compile: the text would be gone before the statement that it is bound to has run.
struct Row {
  std::string getText() const;
  void setText(std::string text);
};

void describe() { DataField<Row, std::string> field(&Row::getText, &Row::setText); }
