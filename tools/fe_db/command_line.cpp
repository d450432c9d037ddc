#include "command_line.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <limits>
#include <memory>
#include <new>

#include "canonical_text.h"
#include "nearest_word.h"
#include "record_kinds.h"
#include "subcommands.h"
#include "tables.h"

namespace fe_db_tools {
namespace {

using Action = std::function<int()>;

/// The action; when memory runs out in it, the message names the files that it works on.
Action namingFiles(std::string files, Action action) {
  return [files = std::move(files), action = std::move(action)] {
    try {
      return action();
    } catch (const std::bad_alloc&) {
      throw std::runtime_error(files + ": not enough memory");
    }
  };
}

// Options that several subcommands have, with one name and one description.

void addTableOption(CLI::App& command, std::string& table) {
  std::vector<std::string> names;
  for (const Table& known : kTables) names.emplace_back(known.name);
  command.add_option("--table", table, "Only this table")->check(CLI::IsMember(std::move(names)));
}

void addWaitOption(CLI::App& command, int& waitSeconds) {
  command
      .add_option("--wait", waitSeconds,
                  "Seconds to wait while another program is writing the file")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
}

void addInit(CLI::App& program, Action& action) {
  auto options = std::make_shared<InitOptions>();
  CLI::App* command = program.add_subcommand(
      "init", "Create an empty database; an existing file is never overwritten");
  command
      ->add_option("--kind", options->kind,
                   "compilation: facts of many translation units, with indexes for saving into it; "
                   "preprocessing: the macros of one unit")
      ->check(CLI::IsMember({kCompilationKind, kPreprocessingKind}))
      ->capture_default_str();
  command->add_option("FILE", options->file, "The file to create")->required();
  command->callback([options, &action] { action = [options] { return init(*options); }; });
}

void addStats(CLI::App& program, Action& action) {
  auto options = std::make_shared<StatsOptions>();
  CLI::App* command =
      program.add_subcommand("stats", "Show rows per table, file size and bytes per row");
  command->add_option("FILE", options->file, "The database file")->required();
  command->add_flag("--units", options->units,
                    "List the units instead: main file, object (or command), recorder, options");
  command->add_flag("--json", options->json, "One JSON object per line");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return showStats(*options); });
  });
}

void addDump(CLI::App& program, Action& action) {
  auto options = std::make_shared<DumpOptions>();
  CLI::App* command = program.add_subcommand(
      "dump", "Print the content without row ids; equal content gives equal output");
  command->footer(
      "Prints one row per line: the table, then name=value, separated by tabs, sorted by bytes. A\n"
      "reference is printed as the key of the row that it references (path:line:column:name), a\n"
      "dangling one as !id. Control characters, bidirectional controls, line separators,\n"
      "backslashes and bytes that are not UTF-8 are printed as \\xNN, and so is a ':' within a\n"
      "part of a key, or the first byte of an ambiguous text. `!integer 5` is a value whose type\n"
      "is not that of its column.");
  command->add_option("FILE", options->file, "The database file")->required();
  addTableOption(*command, options->table);
  command->add_flag("--json", options->json,
                    "One JSON object per line; texts and keys are escaped as without --json");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return dump(*options); });
  });
}

void addDiff(CLI::App& program, Action& action) {
  auto options = std::make_shared<DiffOptions>();
  CLI::App* command =
      program.add_subcommand("diff", "Compare the content of two files, ignoring row ids");
  command->footer(
      "Prints the rows that only A has with '-' and those that only B has with '+', in the format\n"
      "of `fe_db dump`. Exits with 1 if there are any. `--table Unit` compares the units of two\n"
      "merged files: those that only one has, and those that were recorded anew.");
  command->add_option("A", options->left, "The first database file")->required();
  command->add_option("B", options->right, "The second database file")->required();
  addTableOption(*command, options->table);
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action =
        namingFiles(options->left + " and " + options->right, [options] { return diff(*options); });
  });
}

void addMerge(CLI::App& program, Action& action) {
  auto options = std::make_shared<MergeOptions>();
  CLI::App* command = program.add_subcommand(
      "merge", "Merge compilation databases into one that has each fact once");
  command->footer(
      "SOURCE is a file, @LISTFILE for a file that lists one path per line, or - for a list on\n"
      "standard input. Sources are merged in the order given; where two disagree, the first value\n"
      "is kept, and counts add up. TARGET is created if it does not exist; otherwise its content\n"
      "comes first, and its triggers do not run. On any failure TARGET either has the result of\n"
      "the whole merge or is unchanged.\n"
      "A source with a unit that TARGET or an earlier source already has would count it twice: it\n"
      "is refused unless --replace, --skip-known or --again is given.");
  command->add_option("TARGET", options->target, "The file to merge into")->required();
  command->add_option("SOURCE", options->sources, "The files to merge, or lists of them")
      ->required();
  command->add_option("-j,--jobs", options->jobs, "How many sources to read ahead, in parallel")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  command->add_flag("--index,!--no-index", options->index,
                    "Create the search indexes in the merged file, or omit them (default: create)");
  command->add_flag("--keep-going", options->keepGoing,
                    "Skip sources that cannot be merged; the exit code is still 1");
  command->add_flag("--replace", options->replace,
                    "Make TARGET anew from the sources; its old content goes");
  auto* skipKnown = command->add_flag("--skip-known", options->skipKnown,
                                      "Skip sources whose units TARGET or an earlier source has");
  command->add_flag("--again", options->again, "Merge units again that TARGET has already")
      ->excludes(skipKnown);
  command->add_flag("--strict", options->strict,
                    "Exit with 1 if rows or references of a source had to be skipped");
  command->add_flag("--debug", options->debug, "Print the number of rows of each table");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->target, [options] { return merge(*options); });
  });
}

constexpr char kFindHelp[] = R"(QUESTION is a kind of entity:
  functions variables types macros fields enum-constants labels calls externals
or one of
  uses NAME            where it is read, written, called, ... (--role ROLE)
  definition NAME      where a function, variable, type or macro is defined
  declarations NAME    where else it is declared
  callers NAME         the calls to a function; with --depth N a tree of callers
  callees NAME         the calls in a function; likewise
  members TYPE         the fields, functions, constants and types of a class, struct, union or enum
  overrides FUNCTION   the functions that override it
  includers FILE       the files that include it; with --depth N a tree
  includes FILE        the files that it includes; likewise
  units [FILE]         the translation units, or those that read FILE
  unused [macros] [types] [tags] [variables] [fields]   unused entities; without a kind, of all five
  no-effect-calls      calls that discard the result of a function without side effects
  long-names           entities of all kinds whose names have --min-length N characters or more
NAME is plain (AddTarget), qualified (Plan::AddTarget), with parameters (Plan::AddTarget(int)), or a
mangled name. If it means several things, all are answered for and standard error lists them. FILE
is a path, relative to the working directory or as it is stored, the last parts of one, a directory
(all below it), or a glob. The length is that of the identifier, which for a C++ function is the
mangled name. --min-length and --ref-count exclude unnamed types. References of functions are
counted where the units were recorded with references.
Prints path:line:column: kind name [attributes], with - for no file and \xNN for bytes that are not
text, ordered by file, line and column. Exit code 1 if the file has nothing of the given name. Files
without the indexes of fe_db index take longer.)";

void addFind(CLI::App& program, Action& action) {
  auto options = std::make_shared<FindOptions>();
  FindFilter& filter = options->filter;
  CLI::App* command = program.add_subcommand("find", "Answer a question about the code");
  command->footer(kFindHelp);
  command->add_option("FILE", options->file, "A compilation database")->required();
  command->add_option("QUESTION", options->question, "What to find; see below")->required();
  command->add_option("WORD", filter.words, "The argument of the question");
  command->add_option("--name", filter.name, "Only entities of this name, as for NAME");
  command->add_option("--role", filter.role, "uses: only those with this role");
  command
      ->add_option("--depth", options->depth,
                   "callers, callees, includers, includes: a tree of so many steps")
      ->check(CLI::Range(1, 1000));
  command->add_option("--min-length", filter.minLength,
                      "Only names of at least this many characters");
  command
      ->add_option("--ref-count", filter.refCount,
                   "Only entities with exactly this many references")
      ->check(CLI::Range(0, std::numeric_limits<int>::max()));
  command
      ->add_option("--linkage", filter.linkage,
                   "Only this linkage: none, external, internal or a number")
      ->transform(CLI::Transformer(std::map<std::string, std::uint32_t>{
          {"none", kinds::numberOf(kinds::kNoLinkage)},
          {"external", kinds::numberOf(kinds::kExternalLinkage)},
          {"internal", kinds::numberOf(kinds::kInternalLinkage)}}));
  command->add_flag("--defined", filter.defined, "Only definitions; for types, complete ones");
  command->add_option(
      "--file", filter.fileGlob,
      "Only in this file, in the files below this directory, or in files whose path "
      "matches this glob; * also matches /");
  command->add_option("--limit", options->limit, "Print at most this many")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()));
  command->add_flag("--explain", options->explain, "Print SQLite's plan instead of answers");
  auto* count = command->add_flag("--count", options->count, "Print only the number");
  auto* json = command->add_flag("--json", options->json, "One JSON object per line");
  auto* sarif = command->add_flag("--sarif", options->sarif,
                                  "SARIF 2.1.0, for unused, no-effect-calls and long-names");
  count->excludes(json, sarif);
  json->excludes(sarif);
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, command, &action] {
    for (const CLI::Option* option : command->get_options()) {
      if (option->count() != 0) options->given.push_back(option->get_name());
    }
    action = namingFiles(options->file, [options] { return find(*options); });
  });
}

void addCheck(CLI::App& program, Action& action) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* command = program.add_subcommand(
      "check", "Check a file for damage: content that the library would never write");
  command->footer(
      "Prints one finding per line, `TABLE row ID: reason`, or `FILE: reason` for the file as a\n"
      "whole; prints nothing if the file is sound. Findings: errors of SQLite's integrity check,\n"
      "missing tables and columns, tables whose ids are not the row ids (fe_db merge would lose\n"
      "them), virtual tables, a page size other than 32768, values of a wrong type, missing or\n"
      "dangling references, rows with equal keys, row id 0. Lines that begin with `note: ` are\n"
      "not findings: bits of Identifier.Kind that differ from the content of the tables, unknown\n"
      "kinds of external identifiers, and ids of macro uses in a compilation file that are stale\n"
      "since a merge. Exit code 1 if there is a finding.");
  command->add_option("FILE", options->file, "The database file")->required();
  command
      ->add_option("--text", options->text,
                   "The preprocessed text of a preprocessing FILE: also check that it has each "
                   "token and each expansion at the position in its row")
      ->type_name("UNIT.i");
  command->add_flag("--json", options->json,
                    "One JSON object per line: severity, table, row, reason");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return check(*options); });
  });
}

void addIndex(CLI::App& program, Action& action) {
  auto options = std::make_shared<IndexOptions>();
  CLI::App* command = program.add_subcommand(
      "index", "Create the search indexes and views of a compilation database if they are missing");
  command->footer(
      "With the indexes, `fe_db find` and the searches of the library take as long in a large\n"
      "file as in a small one. They do not change any answer. They slow down saving. The views,\n"
      "fe_functions, fe_calls and others, have names joined and kinds in words, for SQL by hand;\n"
      "they take no space.");
  command->add_option("FILE", options->file, "The database file")->required();
  command->add_flag("--drop", options->drop, "Drop the indexes and views instead");
  command->add_flag("--extensions", options->extensions,
                    "Also add the empty tables of the cross-reference that the file lacks");
  addWaitOption(*command, options->waitSeconds);
  command->callback([options, &action] {
    action = namingFiles(options->file, [options] { return makeIndexes(*options); });
  });
}

/// Where the user finds what is allowed: the help of the subcommand that was given, if any.
std::string helpFor(const CLI::App& program) {
  const auto given = program.get_subcommands();
  return "fe_db " + (given.empty() ? "" : given.front()->get_name() + ' ') + "--help";
}

/// For a word that no subcommand or option has.
std::string nearestTo(const std::string& word, const CLI::App& program) {
  const auto given = program.get_subcommands();
  std::vector<std::string> known;
  if (!given.empty()) {
    for (const CLI::Option* option : given.front()->get_options()) {
      known.push_back(option->get_name());
    }
  } else {
    for (const CLI::App* command : program.get_subcommands(nullptr)) {
      known.push_back(command->get_name());
    }
  }
  return suggestion(word, known);
}

std::string messageFor(const CLI::App& program, const CLI::Error& error) {
  std::string message = printable(error.what());
  const std::vector<std::string> rest = program.remaining(/*recurse=*/true);
  if (!rest.empty()) {
    message = "unknown word \"" + printable(rest.front()) + '"' + nearestTo(rest.front(), program);
  }
  if (message.find("--help") == std::string::npos) {
    message += (message.ends_with('?') ? " See " : "; see ") + helpFor(program);
  }
  return "fe_db: " + message + '\n';
}

}  // namespace

Command parseCommandLine(int argc, char** argv) {
  CLI::App program(
      "Creates, prints, compares, merges and searches databases of facts about a code base.",
      "fe_db");
  program.require_subcommand(1);
  program.footer(
      "`fe_db SUBCOMMAND --help` describes a subcommand.\n"
      "Exit codes: 0 done; 1 a file failed, or a difference or damage was found; 2 wrong usage.");
  program.failure_message(
      [](const CLI::App* app, const CLI::Error& error) { return messageFor(*app, error); });
  program.set_version_flag("--version", std::string("fe_db ") + FE_DB_VERSION);
  Command command;
  addInit(program, command.run);
  addStats(program, command.run);
  addDump(program, command.run);
  addDiff(program, command.run);
  addMerge(program, command.run);
  addFind(program, command.run);
  addCheck(program, command.run);
  addIndex(program, command.run);
  try {
    program.parse(argc, argv);
    command.isMerge = program.got_subcommand("merge");
  } catch (const CLI::ParseError& error) {
    const int code = program.exit(error) == 0 ? kDone : kWrongUsage;
    command.run = [code] { return code; };
  }
  return command;
}

}  // namespace fe_db_tools
