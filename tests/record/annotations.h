#pragma once

#include <string>
#include <vector>

namespace fe_db_tests {

/// What is recorded of one place of a source. Line and column count from 1.
struct Annotation {
  unsigned line;
  unsigned column;
  unsigned length;
  std::string text;

  auto operator<=>(const Annotation&) const = default;
};

/// A source with its annotations, each on a line of its own below what it speaks of:
///   int area(int s);
/// //    ^^^^ Function declared
/// In the first columns, where the carets would meet the slashes, `//@1 ^^^^` tells the column.
std::string annotate(const std::string& source, std::vector<Annotation> annotations);

/// The source alone.
std::string withoutAnnotations(const std::string& annotated);

/// The facts of one file in the databases of a unit. Paths that begin with `directory` are
/// shortened; `preprocessed` is the text that the preprocessed columns refer to.
std::vector<Annotation> readAnnotations(const std::string& preprocessingFile,
                                        const std::string& compilationFile,
                                        const std::string& sourceFile, const std::string& directory,
                                        const std::string& preprocessed);

}  // namespace fe_db_tests
