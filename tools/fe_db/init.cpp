#include <memory>

#include "compilation_schema.h"
#include "subcommands.h"

namespace fe_db_tools {
namespace {

constexpr char kCompilation[] = "compilation";
constexpr char kPreprocessing[] = "preprocessing";

struct InitOptions {
  std::string file;
  std::string kind = kCompilation;
};

/// A file made by hand is one that many processes will save into, so it gets the key indexes.
int init(const InitOptions& options) {
  if (options.kind == kCompilation) {
    createCompilationDatabase(options.file, KeyIndexes::yes);
  } else {
    createPreprocessingDatabase(options.file);
  }
  return kDone;
}

}  // namespace

void addInit(CLI::App& program, Action& action) {
  auto options = std::make_shared<InitOptions>();
  CLI::App* command = program.add_subcommand(
      "init", "Create an empty database; an existing file is never overwritten");
  command
      ->add_option("--kind", options->kind,
                   "compilation: facts of many translation units, with indexes for saving into it; "
                   "preprocessing: the macros of one unit")
      ->check(CLI::IsMember({kCompilation, kPreprocessing}))
      ->capture_default_str();
  command->add_option("FILE", options->file, "The file to create")->required();
  command->callback([options, &action] { action = [options] { return init(*options); }; });
}

}  // namespace fe_db_tools
