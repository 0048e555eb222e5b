#pragma once

#include "command.hpp"

namespace evopath {

/// Makes `program`, new and named, the whole command line of evopath. `action` becomes what the
/// command that is given does, and must outlive the parsing.
void addCommands(CLI::App& program, Action& action);

}  // namespace evopath
