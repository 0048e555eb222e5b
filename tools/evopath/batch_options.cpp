#include "batch_options.hpp"

#include <iostream>

#include "catalogue/text/display_text.hpp"
#include "number_option.hpp"

namespace evopath {

using tarn::evolution::catalogue::BatchCounts;
using tarn::evolution::catalogue::BatchLimits;
using tarn::evolution::catalogue::toVisible;
using tarn::evolution::pathfinder::SearchLimits;

void JobsOption::addTo(CLI::App& command) {
  command
      .add_option_function<std::string>(
          "--jobs",
          [this](const std::string& text) {
            jobs = parseNumber("--jobs", text);
            if (jobs == 0) throw CLI::ValidationError("--jobs 0", "must be at least 1");
          },
          "How many questions to ask at a time")
      ->type_name("NUMBER")
      ->default_str(std::to_string(jobs));
}

unsigned JobsOption::threads() const {
  constexpr std::uint64_t most = 1024;
  return static_cast<unsigned>(std::min(jobs, most));
}

void BatchOptions::addTo(CLI::App& command) {
  jobs.addTo(command);
  limits.addTo(command);
  command.get_option("--timeout")
      ->description(
          "For each question, not for all: leave it open when so much time has passed since it was "
          "begun, and go on");
  command.get_option("--memory")
      ->description(
          "For each question: leave it open rather than keep more than so many bytes, and go on; "
          "K, M, G and T stand for powers of 1024");
}

BatchLimits BatchOptions::limitsOf(const SearchLimits& attended) const {
  BatchLimits batch;
  batch.threads = jobs.threads();
  if (limits.seconds) {
    batch.time = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(*limits.seconds));
  }
  if (limits.bytes) batch.memory = *limits.bytes;
  batch.stop = attended.stop;
  return batch;
}

ExitStatus tellCounts(const BatchCounts& counts) {
  if (counts.open + counts.failed == 0) return ExitStatus::Found;
  std::cerr << "evopath: " << counts.found << " found, " << counts.absent << " without a path, "
            << counts.open << " open, " << counts.failed << " that cannot be asked\n";
  if (const auto& first = counts.firstFailure) {
    std::cerr << "evopath: line " << first->line << ": " << toVisible(first->reason) << "\n";
  }
  return counts.failed > 0 ? ExitStatus::BadInput : ExitStatus::Open;
}

}  // namespace evopath
