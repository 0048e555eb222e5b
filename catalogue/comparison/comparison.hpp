#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stop_token>
#include <vector>

#include "catalogue/comparison/asked_answer.hpp"
#include "catalogue/comparison/change_cause.hpp"
#include "catalogue/comparison/content_difference.hpp"
#include "catalogue/explanation/named_version.hpp"
#include "tarn_evolution_catalogue_export.hpp"

namespace tarn::evolution::catalogue {

/// How the answer to a question differs between two catalogues.
enum class AnswerChange {
  Lost,     ///< the former one has a path, the present one has none
  Dearer,   ///< its path weighs more
  Gained,   ///< the present one has a path, the former one had none
  Cheaper,  ///< its path weighs less
  Open,     ///< not known: a limit was reached
};

/// A question that two catalogues answer differently.
struct AnswerDifference {
  Question question;
  AnswerChange change;
  AskedAnswer former;
  AskedAnswer present;
  ChangeCause cause;  ///< nothing where the change is not known
};

/// What a comparison may take.
struct ComparisonLimits {
  /// For each question, in each catalogue.
  std::optional<std::chrono::nanoseconds> time = std::nullopt;
  std::size_t memory = std::numeric_limits<std::size_t>::max();

  /// For finding out why one answer differs.
  CauseLimits cause = {};

  /// End all of it, with what is known by then.
  std::stop_token stop = {};
  std::optional<std::chrono::steady_clock::time_point> deadline = std::nullopt;

  /// How many questions are asked at a time. What is said does not depend on it.
  unsigned threads = 1;

  /// Is told how many questions are compared, by one thread at a time.
  std::function<void(std::size_t compared)> progress = {};
};

/// What two catalogues say differently.
struct Comparison {
  ContentDifference content;
  std::size_t questions = 0;              ///< that were compared
  std::size_t unasked = 0;                ///< that were left when it was ended
  std::vector<AnswerDifference> answers;  ///< in the order of the questions

  /// Versions of the former catalogue that no baseline can hold any more. A version that the
  /// present one lacks counts only if that also lacks a metamodel that the version needs.
  std::vector<NamedVersion> unlinkable;
  std::size_t undecided = 0;  ///< versions of which that took too much work to decide
};

/// Compares what they hold, and what they answer. A question is asked only where something differs
/// in the metamodels that it names or that these need, directly or through others: any other answer
/// is the same.
///
/// Throws std::invalid_argument, naming what is not known, for a question that neither of them can
/// be asked, and what `progress` throws. A limit does not throw: it leaves answers open, or
/// questions unasked.
TARN_EVOLUTION_CATALOGUE_EXPORT Comparison compare(const Catalogue& former,
                                                   const Catalogue& present,
                                                   const std::vector<Question>& questions,
                                                   const ComparisonLimits& limits = {});

}  // namespace tarn::evolution::catalogue
