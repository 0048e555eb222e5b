#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "exit_status.hpp"

namespace evopath {

/// What a command does once the command line has been read; throws for bad input.
using Action = std::function<ExitStatus()>;

/// Adds a command, with its options, to the program; if it is the one given, `action` becomes what
/// it does.
using AddCommand = void (*)(CLI::App& program, Action& action);

void addAddCommand(CLI::App& program, Action& action);
void addBatchCommand(CLI::App& program, Action& action);
void addChangeCommand(CLI::App& program, Action& action);
void addCheckCommand(CLI::App& program, Action& action);
void addDiffCommand(CLI::App& program, Action& action);
void addExplainCommand(CLI::App& program, Action& action);
void addExploreCommand(CLI::App& program, Action& action);
void addExportCommand(CLI::App& program, Action& action);
void addGraphCommand(CLI::App& program, Action& action);
void addImportCommand(CLI::App& program, Action& action);
void addPathCommand(CLI::App& program, Action& action);
void addRemoveCommand(CLI::App& program, Action& action);
void addShowCommand(CLI::App& program, Action& action);
void addStepsCommand(CLI::App& program, Action& action);
void addWordsCommand(CLI::App& program, Action& action);

}  // namespace evopath
