#pragma once

#include "record/annotations.h"

namespace fe_db_tests {

enum class CrossFacts { references, properties };

/// The references in a file, or the properties of what it declares.
std::vector<Annotation> readCrossAnnotations(const std::string& compilationFile,
                                             const std::string& sourceFile, CrossFacts facts);

}  // namespace fe_db_tests
