#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

namespace fe_db_tools {

/// What the command line asks for; answers the exit code. Throws std::runtime_error with the words
/// for the user when something fails.
using Action = std::function<int()>;

/// The action; when memory runs out in it, the message names the files that it works on.
Action namingFiles(std::string files, Action action);

/// Exit codes of all subcommands; `kFailed` is also the answer of a comparison or check that
/// found something.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUsage = 2;

// Each adds one subcommand to the program. `action` is set when it is the one that was given.
void addInit(CLI::App& program, Action& action);
void addStats(CLI::App& program, Action& action);
void addDump(CLI::App& program, Action& action);
void addDiff(CLI::App& program, Action& action);
void addMerge(CLI::App& program, Action& action);
void addFind(CLI::App& program, Action& action);
void addCheck(CLI::App& program, Action& action);
void addIndex(CLI::App& program, Action& action);

// Options that several subcommands have, by one name and in one wording.
void addTableOption(CLI::App& command, std::string& table);
void addWaitOption(CLI::App& command, int& waitSeconds);

inline constexpr int kDefaultWaitSeconds = 60;

}  // namespace fe_db_tools
