#pragma once

#include <iosfwd>
#include <string>

#include "command_line.hpp"

/// Each writes a text about the whole program; equal programs give equal texts.
namespace evopath::manual {

/// A manual page, in roff with the macros of man(7).
void writeManualPage(const Command& program, const std::string& version, std::ostream& out);

/// Completions to be sourced by bash.
void writeBashCompletion(const Command& program, std::ostream& out);

/// Completions for a folder of fish's completions.
void writeFishCompletion(const Command& program, std::ostream& out);

/// Completions for a folder of zsh's function path.
void writeZshCompletion(const Command& program, std::ostream& out);

}  // namespace evopath::manual
