#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <thread>

#include "catalogue/explanation/batch.hpp"
#include "exit_status.hpp"
#include "limit_options.hpp"
#include "pathfinder/search_limits.hpp"

namespace evopath {

/// The option --jobs.
struct JobsOption {
  std::uint64_t jobs = std::max(1U, std::thread::hardware_concurrency());

  /// Adds the option to a command; it receives what is given, so this must outlive the parsing.
  void addTo(CLI::App& command);

  unsigned threads() const;
};

/// The options of commands that answer many questions: --jobs, --timeout and --memory, the limits
/// being those of each question.
struct BatchOptions {
  JobsOption jobs;
  LimitOptions limits;

  /// Adds the options to a command; they receive what is given, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// Those of a batch whose searches are attended to.
  tarn::evolution::catalogue::BatchLimits limitsOf(
      const tarn::evolution::pathfinder::SearchLimits& attended) const;
};

/// What a batch comes to: unless all was answered, lines on standard error tell how much was, and
/// what is wrong with the first question that could not be asked.
ExitStatus tellCounts(const tarn::evolution::catalogue::BatchCounts& counts);

}  // namespace evopath
