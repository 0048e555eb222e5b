#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "catalogue/store/store_progress.hpp"

namespace evopath {

/// The option --dry-run of commands that change something.
struct DryRunOption {
  bool isGiven = false;

  /// Adds it to a command; it receives what is given, so this must outlive the parsing.
  void addTo(CLI::App& command) {
    command.add_flag("--dry-run", isGiven,
                     "Do all but the change itself, and tell what it would be");
  }

  tarn::evolution::catalogue::ChangeMode mode() const {
    using tarn::evolution::catalogue::ChangeMode;
    return isGiven ? ChangeMode::Tried : ChangeMode::Made;
  }

  /// "Added" and the rest, or "Would have added" and the rest.
  std::string tell(std::string done, const std::string& rest) const {
    if (!isGiven) return done + " " + rest + ".\n";
    done.front() = static_cast<char>(done.front() - 'A' + 'a');
    return "Would have " + done + " " + rest + ".\n";
  }
};

}  // namespace evopath
