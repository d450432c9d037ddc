#include "fe_database/compilation_database/column_value.h"

using namespace orvalesca::databases_merger;

/// Compiles, which shows that its twin fails for the reason that it is about.
struct Row {
  const std::string& getText() const;
  void setText(const std::string& text);
};

void describe() { DataField<Row, std::string> field(&Row::getText, &Row::setText); }
