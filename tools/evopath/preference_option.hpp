#pragma once

#include <CLI/CLI.hpp>
#include <optional>

#include "catalogue/explanation/loose_ends.hpp"

namespace evopath {

/// What is done about metamodels that a selection needs and does not name.
struct PreferenceOption {
  std::optional<tarn::evolution::catalogue::VersionPreference> preference = std::nullopt;

  /// Adds --prefer to a command; it sets `preference`, so this must outlive the parsing.
  void addTo(CLI::App& command);

  /// The selection, completed if that was asked for and is possible.
  tarn::evolution::catalogue::Selection apply(
      tarn::evolution::catalogue::BrowsableRepository& repository,
      const tarn::evolution::catalogue::Selection& selection) const;
};

/// Throws std::runtime_error, naming what is open, when more than `limit` baselines realise the
/// selection.
void expectFewBaselines(tarn::evolution::catalogue::BrowsableRepository& repository,
                        const tarn::evolution::catalogue::Selection& selection,
                        std::uint64_t limit);

/// "The versions to start from leave more than 10000 baselines; pin some of these: ..."; empty
/// where there are not so many.
std::string hintAtLooseEnds(tarn::evolution::catalogue::BrowsableRepository& repository,
                            const tarn::evolution::catalogue::Question& question);

}  // namespace evopath
