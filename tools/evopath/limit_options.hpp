#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "pathfinder/search_limits.hpp"

namespace evopath {

/// Adds an option for a number of seconds.
CLI::Option* addSecondsOption(CLI::App& command, const std::string& name,
                              std::optional<double>& seconds, const std::string& description);

/// The options --timeout and --memory of commands that search.
struct LimitOptions {
  std::optional<double> seconds = std::nullopt;
  std::optional<std::uint64_t> bytes = std::nullopt;

  /// Adds the options to a command; they receive what is given, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// The limits of a command that begins at this moment.
  tarn::evolution::pathfinder::SearchLimits fromNow() const;
};

}  // namespace evopath
