#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/browsable_repository.hpp"
#include "catalogue/explanation/batch.hpp"
#include "tarn_evolution_catalogue_export.hpp"

/// The questions that an explorer page answers by itself.
namespace tarn::evolution::catalogue {

/// A question with its answer, a line as `answerBatch` writes it.
struct ExplorerAnswer {
  std::optional<Question> question;  ///< none where the line that was given is no question
  std::string answer;
};

struct ExplorerAnswers {
  std::vector<ExplorerAnswer> answers;  ///< in the order of the questions
  std::size_t leftOut = 0;              ///< questions whose answers would have been too much
  BatchCounts counts = {};              ///< of all, those left out included
};

/// Answers the questions of `next`, each as `answerBatch` does, and keeps all answers in memory.
/// `next` is called by one thread at a time; what it throws is thrown on. A stop leaves out the
/// answers that are still to come.
TARN_EVOLUTION_CATALOGUE_EXPORT ExplorerAnswers answerForExplorer(
    BrowsableRepository& repository, const std::function<std::optional<BatchQuestion>()>& next,
    const BatchLimits& limits);

/// How many bytes of answers `answerCustomaryQuestions` keeps at most.
inline constexpr std::size_t mostCustomaryBytes = 4'000'000;

/// How many versions of a metamodel it asks for at most.
inline constexpr std::size_t mostCustomaryTargets = 8;

/// Answers what people ask first: the catalogue's own question, and for each metamodel the way from
/// the oldest version that a hop leads up from to the newest one that can be reached. For that, the
/// newest versions that hops lead to are asked for one after the other, up to
/// `mostCustomaryTargets`, until there is a path or a limit ends the search; where neither comes,
/// the answer is that about the newest one. Metamodels without hops up are not asked about.
TARN_EVOLUTION_CATALOGUE_EXPORT ExplorerAnswers
answerCustomaryQuestions(BrowsableRepository& repository, const BatchLimits& limits,
                         std::size_t mostBytes = mostCustomaryBytes);

}  // namespace tarn::evolution::catalogue
