#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>

#include "pathfinder/search_limits.hpp"

namespace evopath {

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
