#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "preference_option.hpp"

namespace evopath {

/// The options of commands that ask a catalogue a question.
struct QuestionOptions {
  std::filesystem::path catalogue;
  std::vector<std::string> from;  ///< NAME=VERSION or @FILE each
  std::vector<std::string> to;
  bool question = false;  ///< ask the catalogue's own question instead
  PreferenceOption preference = {};

  /// Adds the options to a command; they receive what is given, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// The question asked, its source completed if that was asked for. Throws std::invalid_argument
  /// when the catalogue has none of its own, and for a selection of another form.
  tarn::evolution::catalogue::Question ask(
      tarn::evolution::catalogue::BrowsableRepository& repository) const;

 private:
  tarn::evolution::catalogue::Question given(
      tarn::evolution::catalogue::BrowsableRepository& repository) const;
};

}  // namespace evopath
