#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"

namespace evopath {

/// The options of commands that ask a catalogue a question.
struct QuestionOptions {
  std::filesystem::path catalogue;
  std::vector<std::string> from;  ///< NAME=VERSION or @FILE each
  std::vector<std::string> to;
  bool question = false;  ///< ask the catalogue's own question instead

  /// Adds the options to a command; they receive what is given, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// The question asked; throws std::invalid_argument when the catalogue has none of its own, or
  /// for a selection of another form.
  tarn::evolution::catalogue::Question ask(
      tarn::evolution::catalogue::BrowsableRepository& repository) const;
};

}  // namespace evopath
